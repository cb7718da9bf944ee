#pragma once

#include <QCoreApplication>

namespace ProjectFileCfg {
namespace Internal {

/// The host's waiting dialog, as the panel uses it. User-interface thread.
class Waiting
{
    // The panel's translation context.
    Q_DECLARE_TR_FUNCTIONS(ProjectFileCfg::Internal::EngineerDocOperWidget)

public:
    /// Shows the dialog, or changes its text. Its cancel button stays as it is.
    static void show(const QString &text);
    /// Shows the dialog's cancel button, with its translated text.
    static void offerCancel();
    static void hide();
};

} // namespace Internal
} // namespace ProjectFileCfg
