#include "hostcalls.h"

#include <QDebug>

#include <exception>

namespace ProjectFileCfg {
namespace Internal {

void logHostException(const char *operation)
{
    try {
        throw;
    } catch (const std::exception &error) {
        qCritical().nospace() << "The host threw in " << operation << ": " << error.what();
    } catch (...) {
        qCritical().nospace() << "The host threw in " << operation << ": not a std::exception";
    }
}

} // namespace Internal
} // namespace ProjectFileCfg
