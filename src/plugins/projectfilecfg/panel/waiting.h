#pragma once

#include <QCoreApplication>

namespace ProjectFileCfg {
namespace Internal {

/// What the panel does with the host's waiting dialog. User-interface thread.
class Waiting
{
    // The panel's texts.
    Q_DECLARE_TR_FUNCTIONS(ProjectFileCfg::Internal::EngineerDocOperWidget)

public:
    /// Shows the dialog, or changes its text. Its cancel button stays as it is.
    static void show(const QString &text);
    /// Shows the dialog's cancel button, under its name.
    static void offerCancel();
    static void hide();
};

} // namespace Internal
} // namespace ProjectFileCfg
