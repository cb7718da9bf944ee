// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <host/fwd.h>

#include <QCoreApplication>

#include <memory>

class QWidget;

namespace ProjectFileCfg {
namespace Internal {

class EngineerDocLoad;

/// What happens between the operator's decision to apply a package and the start of the job. User-interface thread.
class LoadPreparation
{
    // The panel's translation context.
    Q_DECLARE_TR_FUNCTIONS(ProjectFileCfg::Internal::EngineerDocOperWidget)

public:
    /// Has `load` check the package and `device`, which is the load's. If the device is online, refreshes the host's
    /// model of it before the checks; and after them resets the device to its factory settings, unless another one is
    /// active by then, refreshes the model again and reserves the channel.
    ///
    /// False, after a message box or a line in the log, if the job must not run; the panel may have been deleted then.
    static bool prepare(QWidget *panel, EngineerDocLoad &load, const std::shared_ptr<Model::Device> &device);

private:
    static bool sync(const EngineerDocLoad &load);
    static bool reset(QWidget *panel, EngineerDocLoad &load, const std::shared_ptr<Model::Device> &device);
};

} // namespace Internal
} // namespace ProjectFileCfg
