// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "operationresultcodes.h"

#include <support/testmain.h>

#include <type_traits>

using namespace ProjectFileCfg::Internal;

/// Numbers that appear in logs and in the operators' manual.
class TstOperationResultCodes : public QObject
{
    Q_OBJECT

private slots:
    void codes_are_plain_integers();
    void codes_of_a_save_keep_their_numbers();
    void codes_of_an_apply_keep_their_numbers();
};

void TstOperationResultCodes::codes_are_plain_integers()
{
    QVERIFY((std::is_same<std::underlying_type_t<BackupResultCode>, int>::value));
    QVERIFY((std::is_same<std::underlying_type_t<LoadResultCode>, int>::value));
    // Like reading a number into a code: undefined behaviour without a fixed underlying type.
    QCOMPARE(int(static_cast<BackupResultCode>(-1)), -1);
    QCOMPARE(int(static_cast<LoadResultCode>(1000)), 1000);
}

void TstOperationResultCodes::codes_of_a_save_keep_their_numbers()
{
    QCOMPARE(int(BackupSuccess), 0);
    QCOMPARE(int(BackupExportBkgFailed), 1);
    QCOMPARE(int(BackupExportLogoFailed), 2);
    QCOMPARE(int(BackupOfflineResourceIncomplete), 3);
    QCOMPARE(int(BackupUserCanceled), 4);
    QCOMPARE(int(BackupEncryptFailed), 5);
    QCOMPARE(int(BackupSaveJsonFailed), 6);
    QCOMPARE(int(BackupGetDeviceFailed), 7);
}

void TstOperationResultCodes::codes_of_an_apply_keep_their_numbers()
{
    QCOMPARE(int(LoadSuccess), 0);
    QCOMPARE(int(LoadUserCanceled), 1);
    QCOMPARE(int(LoadFileContentError), 2);
    QCOMPARE(int(LoadCardMismatch), 3);
    QCOMPARE(int(LoadHardwareVersionMismatch), 4);
    QCOMPARE(int(LoadGetDeviceFailed), 5);
    QCOMPARE(int(LoadDecompressFailed), 6);
    QCOMPARE(int(LoadImportFailed), 7);
    QCOMPARE(int(LoadJsonFileError), 8);
    QCOMPARE(int(LoadSerializeFailed), 9);
    QCOMPARE(int(LoadDeviceTypeMismatch), 10);
    QCOMPARE(int(LoadImageContentError), 11);
    QCOMPARE(int(LoadProtocolVersionMismatch), 12);
    QCOMPARE(int(LoadApplyGalleryFailed), 14);
    QCOMPARE(int(LoadGalleryFileError), 15);
}

TEST_MAIN_CORE(TstOperationResultCodes)
#include "tst_operationresultcodes.moc"
