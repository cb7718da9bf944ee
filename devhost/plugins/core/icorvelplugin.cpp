#include <core/icorvelplugin.h>

namespace Core {

ICorvelPlugin::ICorvelPlugin() = default;

ICorvelPlugin::~ICorvelPlugin() = default;

} // namespace Core
