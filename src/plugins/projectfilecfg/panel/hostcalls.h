#pragma once

namespace ProjectFileCfg {
namespace Internal {

/// Logs the exception that is being handled, as critical, with the name of the host's operation that threw it.
void logHostException(const char *operation);

/// Calls the host from a slot, which an exception must not leave: Qt's event loop would end the process. False, with a
/// line in the log, if the host threw.
template<typename Call>
bool callHost(const char *operation, const Call &call)
{
    try {
        call();
        return true;
    } catch (...) {
        logHostException(operation);
    }
    return false;
}

} // namespace Internal
} // namespace ProjectFileCfg
