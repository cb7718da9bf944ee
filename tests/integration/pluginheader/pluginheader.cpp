// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <projectfilecfgplugin.h>

#include <type_traits>

using ProjectFileCfg::ProjectFileCfgPlugin;

/// Whether installTranslator is public and takes these arguments.
template<typename Plugin, typename = void, typename... Arguments>
struct IsPublic : std::false_type
{};
template<typename Plugin, typename... Arguments>
struct IsPublic<Plugin, std::void_t<decltype(std::declval<Plugin &>().installTranslator(std::declval<Arguments>()...))>,
                Arguments...> : std::true_type
{};

static_assert(IsPublic<ProjectFileCfgPlugin, void, QString>::value, "the host switches the language");
static_assert(!IsPublic<ProjectFileCfgPlugin, void, QString, QString, QString>::value,
              "installing other files is the plugin's own business");
static_assert(!std::is_abstract<ProjectFileCfgPlugin>::value, "nothing that a base asks for is missing");

namespace {

struct Derived : ProjectFileCfgPlugin
{
    // Virtual, whatever the base class declares.
    bool installTranslator(const QString &) override { return false; }
    // Still accessible to derived plugins.
    bool others() { return ProjectFileCfgPlugin::installTranslator(QString(), QString(), QString()); }
};

} // namespace

void compileAll();
void compileAll()
{
    Derived().others();
}
