// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QCoreApplication>

class QWidget;

namespace ProjectFileCfg {
namespace Internal {

class EngineerDocLoad;

/// What comes between the operator's decision to apply a package and the run of the job. User-interface thread.
class LoadPreparation
{
    // The panel's translation context.
    Q_DECLARE_TR_FUNCTIONS(ProjectFileCfg::Internal::EngineerDocOperWidget)

public:
    /// Has `load` check the package and the device. For an `online` device also: refreshes the host's model of it
    /// before, and after all checks resets the active device, if it is that one, to its factory settings and refreshes
    /// the model again.
    ///
    /// False, with a box or a line in the log, if there is to be no run; the panel may have gone then.
    static bool prepare(QWidget *panel, EngineerDocLoad &load, bool online);

private:
    static bool sync(const EngineerDocLoad &load);
    static bool reset(QWidget *panel, EngineerDocLoad &load);
};

} // namespace Internal
} // namespace ProjectFileCfg
