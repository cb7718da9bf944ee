#include <navigationbar/inavigationbarmode.h>

namespace NavigationBar {

INavigationBarMode::INavigationBarMode(QObject *parent)
    : Core::IMode(parent)
{}

INavigationBarMode::~INavigationBarMode() = default;

} // namespace NavigationBar
