// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

// From a device description to the device compared and applied by the load job.
#include "fuzzing.h"

#include <engineerdocload.h>

#include <model/device.h>

#include <QJsonDocument>
#include <QJsonObject>

int LLVMFuzzerInitialize(int *, char ***)
{
    Fuzzing::beQuiet();
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static Fuzzing::MemoryFile file;
    static ProjectFileCfg::Internal::EngineerDocLoad job(nullptr);
    file.setContent(data, size);
    const std::shared_ptr<Model::Device> device = job.unserailizeDevice(file.path());
    if (!device)
        return 0;

    // What applying to an offline device does, and the host's writing of its description.
    Model::Device target(1);
    target.fromJson(device->toJson());
    FUZZ_VERIFY(target.getModelID() == device->getModelID());
    FUZZ_VERIFY(target.getSlots().size() == device->getSlots().size());
    FUZZ_VERIFY(target.getBKGs().size() == device->getBKGs().size());
    FUZZ_VERIFY(target.getLogos().size() == device->getLogos().size());
    FUZZ_VERIFY(!QJsonDocument(target.toJson()).toJson().isEmpty());
    return 0;
}
