// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

namespace ProjectFileCfg {
namespace Internal {

/// Result of a save. The numbers are fixed; reserved ones are never reused.
enum BackupResultCode : int {
    BackupSuccess = 0,
    BackupExportBkgFailed = 1,
    /// Reserved: a save continues without a logo that cannot be written.
    BackupExportLogoFailed = 2,
    BackupOfflineResourceIncomplete = 3,
    BackupUserCanceled = 4,
    BackupEncryptFailed = 5,
    BackupSaveJsonFailed = 6,
    BackupGetDeviceFailed = 7
};

/// Result of an apply. The numbers are fixed; 13 stays unused.
enum LoadResultCode : int {
    LoadSuccess = 0,
    LoadUserCanceled = 1,
    LoadFileContentError = 2,
    LoadCardMismatch = 3,
    /// Reserved: the hardware's version is not compared.
    LoadHardwareVersionMismatch = 4,
    LoadGetDeviceFailed = 5,
    LoadDecompressFailed = 6,
    LoadImportFailed = 7,
    LoadJsonFileError = 8,
    /// Not shown.
    LoadSerializeFailed = 9,
    LoadDeviceTypeMismatch = 10,
    LoadImageContentError = 11,
    LoadProtocolVersionMismatch = 12,
    LoadApplyGalleryFailed = 14,
    LoadGalleryFileError = 15
};

} // namespace Internal
} // namespace ProjectFileCfg
