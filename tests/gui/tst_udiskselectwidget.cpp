// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "translatedtexts.h"

#include <udiskselectwidget.h>

#include <support/answerbook.h>
#include <support/libraryhook.h>
#include <support/testmain.h>

#include <QAbstractButton>
#include <QButtonGroup>
#include <QDir>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QStorageInfo>
#include <QVBoxLayout>

#include <memory>

#include <sys/stat.h>

using namespace TestSupport;

namespace {

const QVector<UDiskSelectWidget::Volume> twoDisks{
    {QStringLiteral("/dev/sdc1"), QStringLiteral("/mnt/sdc1"), QStringLiteral("TOUR")},
    {QStringLiteral("/dev/sdb1"), QStringLiteral("/mnt/sdb1"), QStringLiteral("SHOW 50%2")}};

/// During its lifetime the folder does not exist for its callers.
class HiddenFolder
{
public:
    explicit HiddenFolder(const QByteArray &path)
    {
        s_path = path;
        s_wasAskedFor = false;
    }
    ~HiddenFolder() { s_path.clear(); }
    Q_DISABLE_COPY(HiddenFolder)

    bool wasAskedFor() const { return s_wasAskedFor; }

    static bool hides(const char *path)
    {
        const bool hidden = !s_path.isEmpty() && path && (path == s_path || path == s_path + '/');
        s_wasAskedFor = s_wasAskedFor || hidden;
        return hidden;
    }

private:
    static QByteArray s_path;
    static bool s_wasAskedFor;
};

QByteArray HiddenFolder::s_path;
bool HiddenFolder::s_wasAskedFor = false;

QListWidget *diskList(const UDiskSelectWidget &dialog)
{
    return dialog.findChild<QListWidget *>();
}

QRadioButton *disk(const UDiskSelectWidget &dialog, int row)
{
    return qobject_cast<QRadioButton *>(diskList(dialog)->itemWidget(diskList(dialog)->item(row)));
}

QStringList texts(const UDiskSelectWidget &dialog)
{
    QStringList result;
    for (int row = 0; row < diskList(dialog)->count(); ++row)
        result.append(disk(dialog, row)->text());
    return result;
}

} // namespace

// Hooks the C library's functions used by Qt.
extern "C" Q_DECL_EXPORT int statx(int folder, const char *path, int flags, unsigned int mask,
                                   struct statx *found) noexcept
{
    static const auto original =
        TestSupport::original<int(int, const char *, int, unsigned int, struct statx *)>("statx");
    errno = ENOENT;
    return HiddenFolder::hides(path) ? -1 : original(folder, path, flags, mask, found);
}
extern "C" Q_DECL_EXPORT int stat64(const char *path, struct stat64 *found) noexcept
{
    static const auto original = TestSupport::original<int(const char *, struct stat64 *)>("stat64");
    errno = ENOENT;
    return HiddenFolder::hides(path) ? -1 : original(path, found);
}

class TstUDiskSelectWidget : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { WarningGuard::clear(); }

    void slots_are_in_their_fixed_order();
    void size_and_properties_are_fixed();
    void the_title_follows_the_language();
    void disks_are_listed_by_mount_path();
    void only_mounted_usb_disks_are_listed_data();
    void only_mounted_usb_disks_are_listed();
    void volumes_of_the_machine_are_scanned();
    void without_the_folder_of_mounts_nothing_is_listed();
    void the_list_is_shown_by_the_dialog();
    void choice_follows_the_button_passed_in();
    void disks_exclude_each_other();
    void nothing_is_chosen_at_first();
    void ok_keeps_the_disk_that_was_clicked_last();
    void cancelling_forgets_the_choice_data();
    void cancelling_forgets_the_choice();
};

void TstUDiskSelectWidget::initTestCase()
{
    if (!QDir(QStringLiteral("/mnt/")).exists())
        QSKIP("Without /mnt/ no disk is ever listed");
}

void TstUDiskSelectWidget::slots_are_in_their_fixed_order()
{
    const QMetaObject &meta = UDiskSelectWidget::staticMetaObject;
    QCOMPARE(meta.className(), "UDiskSelectWidget");
    QByteArrayList own;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        QCOMPARE(meta.method(i).access(), QMetaMethod::Private);
        own.append(meta.method(i).methodSignature());
    }
    QCOMPARE(own, QByteArrayList({"slot_cancelSelectUDisk()", "slot_DiskSelectChanged(QAbstractButton*)"}));
}

void TstUDiskSelectWidget::size_and_properties_are_fixed()
{
    UDiskSelectWidget dialog(nullptr, twoDisks);
    dialog.show();
    QCOMPARE(dialog.size(), QSize(748, 395));
    QCOMPARE(dialog.minimumSize(), dialog.maximumSize());
    QVERIFY(dialog.windowFlags().testFlag(Qt::FramelessWindowHint));
    QCOMPARE(dialog.contentsMargins(), QMargins(0, 0, 0, 0));
    QCOMPARE(dialog.property("UDiskDialog"), QVariant(true));
    QCOMPARE(diskList(dialog)->property("UDiskSelectWidget"), QVariant(true));
    QCOMPARE(diskList(dialog)->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QVERIFY(diskList(dialog)->isVisible());

    const auto *layout = dialog.findChild<QWidget *>(QStringLiteral("FramelessDialogContent"))->layout();
    QCOMPARE(layout->spacing(), 8);
    QCOMPARE(layout->count(), 4);
    QCOMPARE(layout->itemAt(0)->spacerItem()->sizeHint().height(), 8);
    QCOMPARE(layout->itemAt(3)->spacerItem()->sizeHint().height(), 8);
    const QLayout *titleRow = layout->itemAt(1)->layout();
    QCOMPARE(titleRow->count(), 3);
    QCOMPARE(titleRow->itemAt(0)->spacerItem()->sizeHint().width(), 32);
    QVERIFY(titleRow->itemAt(2)->spacerItem()->expandingDirections() & Qt::Horizontal);
    const auto *title = qobject_cast<QLabel *>(titleRow->itemAt(1)->widget());
    QCOMPARE(title->text(), QStringLiteral("Please select the destination U disk"));
    QCOMPARE(title->property("StaticLable"), QVariant(true));
    QCOMPARE(title->alignment(), Qt::AlignLeft | Qt::AlignVCenter);
    const QLayout *listRow = layout->itemAt(2)->layout();
    QCOMPARE(listRow->itemAt(0)->spacerItem()->sizeHint().width(), 32);
    QCOMPARE(listRow->itemAt(1)->widget(), diskList(dialog));
    QCOMPARE(listRow->itemAt(2)->spacerItem()->sizeHint().width(), 32);
}

void TstUDiskSelectWidget::the_title_follows_the_language()
{
    const TranslatedTexts chinese(QStringLiteral("zh_CN"));
    QVERIFY(chinese.areFound());
    const UDiskSelectWidget dialog(nullptr, twoDisks);
    const QString translated = QCoreApplication::translate("UDiskSelectWidget", "Please select the destination U disk");
    QVERIFY(translated != QStringLiteral("Please select the destination U disk"));
    QStringList labels;
    for (const QLabel *label : dialog.findChildren<QLabel *>())
        labels.append(label->text());
    QVERIFY(labels.contains(translated));
}

void TstUDiskSelectWidget::disks_are_listed_by_mount_path()
{
    const UDiskSelectWidget dialog(nullptr, twoDisks);
    QCOMPARE(dialog.diskCount(), 2);
    QCOMPARE(texts(dialog), QStringList({QStringLiteral("SHOW 50%2[/mnt/sdb1]"), QStringLiteral("TOUR[/mnt/sdc1]")}));
    for (int row = 0; row < 2; ++row)
        QCOMPARE(diskList(dialog)->item(row)->sizeHint(), QSize(680, 39));
    QCOMPARE(disk(dialog, 0)->property("Path").toString(), QStringLiteral("/mnt/sdb1"));
    QCOMPARE(disk(dialog, 1)->property("Path").toString(), QStringLiteral("/mnt/sdc1"));
}

void TstUDiskSelectWidget::only_mounted_usb_disks_are_listed_data()
{
    QTest::addColumn<QString>("device");
    QTest::addColumn<QString>("mountPath");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("disk") << "/dev/sda1"
                          << "/mnt/sda1" << QStringList("label[/mnt/sda1]");
    QTest::newRow("named by its label") << "LABEL=STICK"
                                        << "/mnt/sdb" << QStringList("STICK[/mnt/sdb]");
    QTest::newRow("mounted elsewhere") << "/dev/sda1"
                                       << "/home" << QStringList();
    QTest::newRow("mounted beside") << "/dev/sda1"
                                    << "/mnt/disk" << QStringList();
    QTest::newRow("network") << "server:/share"
                             << "/mnt/sdb1" << QStringList();
    QTest::newRow("built in") << "/dev/nvme0n1p1"
                              << "/mnt/sdb1" << QStringList();
    QTest::newRow("label elsewhere") << "LABEL=ROOT"
                                     << "/" << QStringList();
}

void TstUDiskSelectWidget::only_mounted_usb_disks_are_listed()
{
    QFETCH(QString, device);
    QFETCH(QString, mountPath);
    QFETCH(QStringList, expected);
    const UDiskSelectWidget dialog(nullptr, {{device, mountPath, QStringLiteral("label")}});
    QCOMPARE(texts(dialog), expected);
    QCOMPARE(dialog.diskCount(), expected.count());
}

void TstUDiskSelectWidget::volumes_of_the_machine_are_scanned()
{
    int expected = 0;
    for (const QStorageInfo &volume : QStorageInfo::mountedVolumes()) {
        if (volume.rootPath().startsWith(QStringLiteral("/mnt/sd")) && volume.device().startsWith("/dev/sd"))
            ++expected;
    }
    const UDiskSelectWidget dialog(nullptr);
    QCOMPARE(dialog.diskCount(), expected);
}

void TstUDiskSelectWidget::without_the_folder_of_mounts_nothing_is_listed()
{
    {
        const HiddenFolder hidden("/mnt");
        const UDiskSelectWidget dialog(nullptr, twoDisks);
        QVERIFY(hidden.wasAskedFor());
        QCOMPARE(dialog.diskCount(), 0);
        QCOMPARE(diskList(dialog)->count(), 0);
    }
    QCOMPARE(UDiskSelectWidget(nullptr, twoDisks).diskCount(), 2);
}

void TstUDiskSelectWidget::the_list_is_shown_by_the_dialog()
{
    const UDiskSelectWidget dialog(nullptr, twoDisks);
    QVERIFY(dialog.isHidden());
    // Shown in its own right, not only as the dialog's child.
    QVERIFY(!diskList(dialog)->isHidden());
    QVERIFY(diskList(dialog)->testAttribute(Qt::WA_WState_ExplicitShowHide));
}

void TstUDiskSelectWidget::choice_follows_the_button_passed_in()
{
    UDiskSelectWidget dialog(nullptr, twoDisks);
    const auto choose = [&dialog](QAbstractButton *button) {
        return QMetaObject::invokeMethod(&dialog, "slot_DiskSelectChanged", Q_ARG(QAbstractButton *, button));
    };
    QVERIFY(choose(disk(dialog, 1)));
    QVERIFY(disk(dialog, 1)->isChecked());
    QCOMPARE(dialog.selectPath(), QStringLiteral("/mnt/sdc1"));

    QPushButton other;
    other.setCheckable(true);
    other.setProperty("Path", QStringLiteral("/elsewhere"));
    QVERIFY(choose(&other));
    QVERIFY(!other.isChecked());
    QCOMPARE(dialog.selectPath(), QStringLiteral("/mnt/sdc1"));

    QVERIFY(QMetaObject::invokeMethod(&dialog, "slot_cancelSelectUDisk"));
    QCOMPARE(dialog.selectPath(), QString());
    QCOMPARE(dialog.result(), 0);
}

void TstUDiskSelectWidget::disks_exclude_each_other()
{
    // Each is alone in its row, so only the group makes them exclusive.
    std::unique_ptr<UDiskSelectWidget> dialog(new UDiskSelectWidget(nullptr, twoDisks));
    const QPointer<QButtonGroup> group = disk(*dialog, 0)->group();
    QVERIFY(group);
    QCOMPARE(disk(*dialog, 1)->group(), group.data());
    QVERIFY(group->exclusive());
    QVERIFY(!group->parent());
    disk(*dialog, 0)->click();
    disk(*dialog, 1)->click();
    QVERIFY(!disk(*dialog, 0)->isChecked());
    dialog.reset();
    QVERIFY(!group);
}

void TstUDiskSelectWidget::nothing_is_chosen_at_first()
{
    UDiskSelectWidget dialog(nullptr, twoDisks);
    QVERIFY(!disk(dialog, 0)->isChecked());
    QVERIFY(!disk(dialog, 1)->isChecked());
    QCOMPARE(dialog.selectPath(), QString());
    dialog.show();
    QVERIFY(click(&dialog, QStringLiteral("OK")));
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(dialog.selectPath(), QString());
}

void TstUDiskSelectWidget::ok_keeps_the_disk_that_was_clicked_last()
{
    UDiskSelectWidget dialog(nullptr, twoDisks);
    AnswerBook book;
    book.expectDialog(QStringLiteral("UDiskSelectWidget"), [&dialog](QDialog *shown) {
        disk(dialog, 0)->click();
        disk(dialog, 1)->click();
        click(shown, QStringLiteral("OK"));
    });
    QCOMPARE(dialog.exec(), int(QDialog::Accepted));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
    QCOMPARE(dialog.selectPath(), QStringLiteral("/mnt/sdc1"));
    QVERIFY(disk(dialog, 1)->isChecked());
    QVERIFY(!disk(dialog, 0)->isChecked());
}

void TstUDiskSelectWidget::cancelling_forgets_the_choice_data()
{
    QTest::addColumn<int>("way");
    QTest::newRow("cancel") << 0;
    QTest::newRow("escape") << 1;
    QTest::newRow("close") << 2;
}

void TstUDiskSelectWidget::cancelling_forgets_the_choice()
{
    QFETCH(int, way);
    UDiskSelectWidget dialog(nullptr, twoDisks);
    AnswerBook book;
    QString chosen;
    book.expectDialog(QStringLiteral("UDiskSelectWidget"), [&](QDialog *shown) {
        disk(dialog, 0)->click();
        chosen = dialog.selectPath();
        if (way == 0)
            click(shown, QStringLiteral("Cancel"));
        else if (way == 1)
            QTest::keyClick(shown, Qt::Key_Escape);
        else
            shown->close();
    });
    QCOMPARE(dialog.exec(), int(QDialog::Rejected));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
    QCOMPARE(chosen, QStringLiteral("/mnt/sdb1"));
    QCOMPARE(dialog.selectPath(), QString());
}

TEST_MAIN(TstUDiskSelectWidget)
#include "tst_udiskselectwidget.moc"
