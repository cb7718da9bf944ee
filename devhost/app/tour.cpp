// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "tour.h"

#include "packagecheck.h"

#include <core/language.h>
#include <model/objectbrige.h>
#include <simulation/faults.h>
#include <simulation/session/session.h>
#include <widgets/framelessmessagebox.h>
#include <widgets/icenterwidget.h>
#include <widgets/waitingdialog.h>

#include <QApplication>
#include <QComboBox>
#include <QDateTime>
#include <QDialog>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QLineEdit>
#include <QStandardPaths>
#include <QTableWidget>
#include <QTextEdit>
#include <QTextStream>
#include <QToolButton>

using Corvel::Widgets::ICenterWidget;
using Corvel::Widgets::WaitingDialog;
using HX::Widgets::FramelessMessageBox;

namespace {

const QString firstProject = QStringLiteral("Evening show");
const QString editedProject = QStringLiteral("Evening show 晚会 🎬");
const QString projectExtension = QStringLiteral(".corvelpro");
const QString backupQuestion =
    QStringLiteral("Whether the current configuration needs to be backed up before the project file is imported?");

QTextStream &out()
{
    static QTextStream stream(stdout);
    return stream;
}

QString mebibytes(const QString &path)
{
    return QString::number(double(QFileInfo(path).size()) / (1024 * 1024), 'f', 1) + QStringLiteral(" MiB");
}

} // namespace

Tour::Tour(Simulation::Session &session, QWidget *window, const QString &directory)
    : m_session(session)
    , m_window(window)
    , m_directory(directory)
    , m_hand(window, directory)
{}

int Tour::run()
{
    try {
        QDir().mkpath(m_directory);
        openProjectFiles();
        showEmptyTable();
        saveFirstDevice();
        cancelSave();
        editProject();
        saveProjectAs();
        importProjects();
        applyToSecondDevice();
        refuseOtherModel();
        cancelApply();
        deleteProject();
        showChinese();
        deleteAllProjects();
        workByKeyboard();
    } catch (const TourFailure &failure) {
        out() << "FAILED: " << failure.text() << '\n';
        out().flush();
        return 1;
    }
    out() << "The pictures are in " << QDir::toNativeSeparators(m_directory) << '\n';
    out().flush();
    return 0;
}

void Tour::step(const QString &title, const std::function<QString()> &work)
{
    QElapsedTimer timer;
    timer.start();
    out() << title << " ... ";
    out().flush();
    const QString outcome = work();
    out() << outcome << " (" << QString::number(double(timer.elapsed()) / 1000, 'f', 1) << " s)\n";
    out().flush();
}

void Tour::keyboardStep(const QString &title, const std::function<QString()> &work)
{
    step(QStringLiteral("With the keyboard alone: ") + title, [&] {
        m_hand.takeKeyCount();
        const QString outcome = work();
        return QStringLiteral("%1; %2 keys").arg(outcome).arg(m_hand.takeKeyCount());
    });
}

void Tour::require(bool condition, const QString &failure)
{
    if (!condition)
        throw TourFailure(failure);
}

// ---------------------------------------------------------------------------------------------------------------------
// The panel as an operator sees it

QTableWidget *Tour::table() const
{
    return m_panel->findChild<QTableWidget *>();
}

QStringList Tour::projects() const
{
    QStringList names;
    for (int row = 0; row < table()->rowCount(); ++row)
        names.append(table()->item(row, 0)->text());
    return names;
}

int Tour::rowOf(const QString &project) const
{
    const int row = projects().indexOf(project);
    require(row >= 0, QStringLiteral("the project \"%1\" is not listed").arg(project));
    return row;
}

void Tour::expectProjects(const QStringList &names)
{
    const QSet<QString> expected(names.begin(), names.end());
    m_hand.waitUntil(
        [&] {
            const QStringList listed = projects();
            return listed.count() == names.count() && QSet<QString>(listed.begin(), listed.end()) == expected;
        },
        QStringLiteral("the table to list %1").arg(names.join(QStringLiteral(", "))), 20000);
}

void Tour::pressInRow(const QString &project, const QString &button)
{
    m_hand.press(table()->cellWidget(rowOf(project), 2), button);
}

QString Tour::projectPath(const QString &name) const
{
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) +
           QStringLiteral("/Velmora/Tarvo/ProjectFiles/") + name + projectExtension;
}

void Tour::selectDevice(const QString &ip)
{
    auto *combo = m_panel->findChild<QComboBox *>();
    for (int index = 0; index < combo->count(); ++index) {
        if (combo->itemData(index, Qt::UserRole + 1).toStringList().contains(ip)) {
            combo->setCurrentIndex(index);
            return;
        }
    }
    throw TourFailure(QStringLiteral("the device %1 is not offered").arg(ip));
}

void Tour::startSave(const QString &name, const QString &comment, const QString &picture)
{
    m_hand.onNextDialog([=](QDialog *dialog) {
        auto *nameEdit = dialog->findChild<QLineEdit *>();
        auto *commentEdit = dialog->findChild<QTextEdit *>();
        require(nameEdit && commentEdit, QStringLiteral("expected the dialog for name and comment"));
        nameEdit->setText(name);
        commentEdit->setPlainText(comment);
        if (!picture.isEmpty())
            m_hand.takePicture(picture);
        m_hand.press(dialog, QStringLiteral("OK"));
    });
    m_hand.press(m_panel, QStringLiteral("Save Project"));
}

void Tour::waitForProgress(int pictures)
{
    QStringList texts;
    m_hand.waitUntil(
        [&] {
            const QString text = WaitingDialog::instance()->text();
            if (WaitingDialog::instance()->isVisible() && text.contains(QLatin1Char('[')) && !texts.contains(text))
                texts.append(text);
            return texts.count() >= pictures;
        },
        QStringLiteral("progress of the save"));
}

// ---------------------------------------------------------------------------------------------------------------------
// The steps

void Tour::openProjectFiles()
{
    step(QStringLiteral("Open the page of project files"), [this] {
        m_hand.waitUntil(
            [this] {
                const QList<ICenterWidget *> widgets = m_window->findChildren<ICenterWidget *>();
                for (ICenterWidget *widget : widgets) {
                    if (widget->isVisible() && widget->id() == "ProjectFileCfg.Central")
                        m_panel = widget;
                }
                return m_panel != nullptr;
            },
            QStringLiteral("the panel"), 20000);
        return QStringLiteral("%1 devices are offered").arg(m_panel->findChild<QComboBox *>()->count());
    });
}

void Tour::showEmptyTable()
{
    step(QStringLiteral("List project files"), [this] {
        expectProjects({});
        m_hand.takePicture(QStringLiteral("01-no-projects"));
        return QStringLiteral("there are none");
    });
}

void Tour::saveFirstDevice()
{
    const QString ip = m_session.addresses().constFirst();
    step(QStringLiteral("Save the device %1 as \"%2\"").arg(ip, firstProject), [this, ip] {
        const QString comment = QStringLiteral("Saved before the doors open");
        selectDevice(ip);
        m_saved = m_session.hardware(ip)->state();
        startSave(firstProject, comment, QStringLiteral("02-name-and-comment"));
        waitForProgress(2);
        m_hand.takePicture(QStringLiteral("03-saving"));
        m_hand.waitUntilIdle();
        expectProjects({firstProject});
        m_hand.takePicture(QStringLiteral("04-saved"));

        const QString path = projectPath(firstProject);
        const QString difference = packageDifference(path, m_saved, firstProject, comment);
        require(difference.isEmpty(), difference);
        require(m_session.hardware(ip)->state() == m_saved, QStringLiteral("the save changed the device"));
        return QStringLiteral("%1; %2 pictures are equal pixel by pixel, %3 presets byte by byte")
            .arg(mebibytes(path))
            .arg(m_saved.backgrounds.count() + m_saved.logos.count())
            .arg(m_saved.presets.count());
    });
}

void Tour::cancelSave()
{
    step(QStringLiteral("Cancel a save while it runs"), [this] {
        startSave(QStringLiteral("Never written"), QString());
        waitForProgress(1);
        m_hand.onNextBox(QStringLiteral("User cancels current operation"), QStringLiteral("OK"));
        m_hand.press(WaitingDialog::instance(), QStringLiteral("Cancel"));
        m_hand.waitUntilIdle();
        require(!QFileInfo::exists(projectPath(QStringLiteral("Never written"))),
                QStringLiteral("a cancelled save left a package"));
        return QStringLiteral("no package was written");
    });
}

void Tour::editProject()
{
    step(QStringLiteral("Give it another name and comment"), [this] {
        const QString comment = QStringLiteral("主舞台，第二场 · cue list 12");
        m_hand.onNextDialog([this, comment](QDialog *dialog) {
            dialog->findChild<QLineEdit *>()->setText(editedProject);
            dialog->findChild<QTextEdit *>()->setPlainText(comment);
            m_hand.press(dialog, QStringLiteral("OK"));
        });
        pressInRow(firstProject, QStringLiteral("Edit"));
        expectProjects({editedProject});
        const QString difference = packageDifference(projectPath(editedProject), m_saved, editedProject, comment);
        require(difference.isEmpty(), difference);
        return QStringLiteral("the row shows \"%1\"").arg(projects().constFirst());
    });
}

void Tour::saveProjectAs()
{
    step(QStringLiteral("Save it as a file elsewhere"), [this] {
        const QString target = m_directory + QStringLiteral("/carried away") + projectExtension;
        QFile::remove(target);
        m_hand.onNextFileDialog({target});
        m_hand.onNextBox(QStringLiteral("save as success"), QStringLiteral("OK"));
        pressInRow(editedProject, QStringLiteral("Save as"));
        m_hand.waitUntilIdle();
        QFile copy(target);
        QFile original(projectPath(editedProject));
        require(copy.open(QIODevice::ReadOnly) && original.open(QIODevice::ReadOnly) &&
                    copy.readAll() == original.readAll(),
                QStringLiteral("the copy differs from the project file"));
        return QStringLiteral("the copy is equal, %1").arg(mebibytes(target));
    });
}

void Tour::importProjects()
{
    step(QStringLiteral("Import nine project files"), [this] {
        const QString carried = m_directory + QStringLiteral("/carried away") + projectExtension;
        const QDir importDirectory(m_directory + QStringLiteral("/import"));
        importDirectory.mkpath(QStringLiteral("."));
        QStringList names;
        QStringList paths;
        for (int number = 1; number <= 9; ++number) {
            names.append(QStringLiteral("Day %1").arg(number));
            paths.append(importDirectory.filePath(names.last() + projectExtension));
            require(QFile::copy(carried, paths.last()), QStringLiteral("cannot write %1").arg(paths.last()));
        }
        m_hand.onNextFileDialog(paths);
        m_hand.onNextBox(QStringLiteral("Import as success"), QStringLiteral("OK"));
        m_hand.press(m_panel, QStringLiteral("Import Project"));
        m_hand.waitUntilIdle();
        expectProjects(names + QStringList{editedProject});
        m_hand.takePicture(QStringLiteral("05-ten-projects"));
        QDir(importDirectory).removeRecursively();
        return QStringLiteral("ten are listed");
    });
}

void Tour::applyToSecondDevice()
{
    const QString ip = m_session.addresses().at(1);
    step(QStringLiteral("Apply it to the device %1, with a backup first").arg(ip), [this, ip] {
        selectDevice(ip);
        const Simulation::HardwareState before = m_session.hardware(ip)->state();
        require(before.configuration() != m_saved.configuration(), QStringLiteral("the devices were equal before"));
        m_hand.onNextDialog([this](QDialog *dialog) {
            require(qobject_cast<FramelessMessageBox *>(dialog) &&
                        static_cast<FramelessMessageBox *>(dialog)->text() == backupQuestion,
                    QStringLiteral("expected the question about a backup"));
            m_hand.takePicture(QStringLiteral("06-backup-first"));
            m_hand.press(dialog, QStringLiteral("Yes"));
        });
        pressInRow(editedProject, QStringLiteral("Apply"));
        m_hand.waitUntil(
            [] {
                return WaitingDialog::instance()->isVisible() &&
                       WaitingDialog::instance()->text().startsWith(QStringLiteral("LOGO:"));
            },
            QStringLiteral("the apply to send logos"));
        m_hand.takePicture(QStringLiteral("07-applying"));
        m_hand.waitUntilIdle();

        const QString backup = projects().value(0);
        QString difference = packageDifference(projectPath(backup), before, backup, table()->item(0, 1)->text());
        require(difference.isEmpty(), QStringLiteral("the backup: ") + difference);
        difference = m_session.hardware(ip)
                         ->state()
                         .configuration()
                         .differencesTo(m_saved.configuration())
                         .join(QStringLiteral("; "));
        require(difference.isEmpty(), difference);
        return QStringLiteral("\"%1\" holds what it had before, and it is equal to the saved device now").arg(backup);
    });
}

void Tour::refuseOtherModel()
{
    const QString ip = m_session.addresses().at(2);
    step(QStringLiteral("Apply it to the device %1, of another model").arg(ip), [this, ip] {
        selectDevice(ip);
        const Simulation::HardwareState before = m_session.hardware(ip)->state();
        m_hand.onNextBox(backupQuestion, QStringLiteral("No"));
        m_hand.onNextDialog([this](QDialog *dialog) {
            require(qobject_cast<FramelessMessageBox *>(dialog) &&
                        static_cast<FramelessMessageBox *>(dialog)->text() == QStringLiteral("Device type mismatch"),
                    QStringLiteral("expected the refusal"));
            m_hand.takePicture(QStringLiteral("08-refused"));
            m_hand.press(dialog, QStringLiteral("OK"));
        });
        pressInRow(editedProject, QStringLiteral("Apply"));
        m_hand.waitUntilIdle();
        require(m_session.hardware(ip)->state() == before, QStringLiteral("a refused apply changed the device"));
        return QStringLiteral("refused, and the device is unchanged");
    });
}

void Tour::cancelApply()
{
    const QString ip = m_session.addresses().constFirst();
    step(QStringLiteral("Cancel an apply to the device %1").arg(ip), [this, ip] {
        selectDevice(ip);
        m_hand.onNextBox(backupQuestion, QStringLiteral("No"));
        pressInRow(editedProject, QStringLiteral("Apply"));
        m_hand.waitUntil(
            [] {
                return WaitingDialog::instance()->isVisible() &&
                       WaitingDialog::instance()->text().startsWith(QStringLiteral("BKG:"));
            },
            QStringLiteral("the apply to send backgrounds"));
        QString message;
        m_hand.onNextDialog([this, &message](QDialog *dialog) {
            const auto *box = qobject_cast<FramelessMessageBox *>(dialog);
            require(box, QStringLiteral("expected the message about the cancelled apply"));
            message = box->text();
            m_hand.press(dialog, QStringLiteral("OK"));
        });
        m_hand.press(WaitingDialog::instance(), QStringLiteral("Cancel"));
        m_hand.waitUntilIdle();
        return QStringLiteral("ended with \"%1\"").arg(message);
    });
    step(QStringLiteral("Apply it to the device %1 after all").arg(ip), [this, ip] {
        m_hand.onNextBox(backupQuestion, QStringLiteral("No"));
        pressInRow(editedProject, QStringLiteral("Apply"));
        m_hand.waitUntilIdle();
        const QString difference = m_session.hardware(ip)
                                       ->state()
                                       .configuration()
                                       .differencesTo(m_saved.configuration())
                                       .join(QStringLiteral("; "));
        require(difference.isEmpty(), difference);
        return QStringLiteral("it is as it was saved");
    });
}

void Tour::deleteProject()
{
    step(QStringLiteral("Delete one project file"), [this] {
        QStringList left = projects();
        left.removeAll(QStringLiteral("Day 9"));
        m_hand.onNextBox(QStringLiteral("Confirm to delete the selected project file?"), QStringLiteral("Yes"));
        pressInRow(QStringLiteral("Day 9"), QStringLiteral("Delete"));
        expectProjects(left);
        require(!QFileInfo::exists(projectPath(QStringLiteral("Day 9"))), QStringLiteral("the file is still there"));
        return QStringLiteral("it is gone, %1 are left").arg(left.count());
    });
}

void Tour::showChinese()
{
    step(QStringLiteral("Switch to Chinese"), [this] {
        Core::switchLanguage(QStringLiteral("zh_CN"));
        m_hand.waitUntil(
            [this] {
                const auto *button = table()->cellWidget(0, 2)->findChild<QToolButton *>();
                return button && button->text() == QStringLiteral("编辑");
            },
            QStringLiteral("the rows in Chinese"), 20000);
        m_hand.takePicture(QStringLiteral("09-chinese"));
        m_hand.onNextDialog([this](QDialog *dialog) {
            m_hand.takePicture(QStringLiteral("10-chinese-name-and-comment"));
            dialog->reject();
        });
        pressInRow(projects().constFirst(), QStringLiteral("编辑"));
        m_hand.onNextDialog([this](QDialog *dialog) {
            m_hand.takePicture(QStringLiteral("11-chinese-question"));
            dialog->reject();
        });
        m_hand.press(m_panel, QStringLiteral("全部删除"));
        m_hand.onNextDialog([this](QDialog *dialog) { m_hand.press(dialog, QStringLiteral("确定")); });
        m_hand.press(m_panel, QStringLiteral("保存项目"));
        waitForProgress(1);
        m_hand.takePicture(QStringLiteral("12-chinese-saving"));
        m_hand.onNextBox(QStringLiteral("用户已取消当前操作"), QStringLiteral("确定"));
        m_hand.press(WaitingDialog::instance(), QStringLiteral("取消"));
        m_hand.waitUntilIdle();
        Core::switchLanguage(QStringLiteral("en"));
        m_hand.waitUntil(
            [this] { return table()->cellWidget(0, 2)->findChild<QToolButton *>()->text() == QStringLiteral("Edit"); },
            QStringLiteral("the rows in English"), 20000);
        return QStringLiteral("four screens in Chinese, and back");
    });
}

void Tour::deleteAllProjects()
{
    step(QStringLiteral("Delete all project files"), [this] {
        m_hand.onNextBox(QStringLiteral("Confirm to delete all project file?"), QStringLiteral("Yes"));
        m_hand.press(m_panel, QStringLiteral("All Delete"));
        expectProjects({});
        require(QDir(QFileInfo(projectPath(QString())).path()).entryList(QDir::Files | QDir::Hidden).isEmpty(),
                QStringLiteral("files are left in the folder"));
        return QStringLiteral("the folder is empty");
    });
}

void Tour::workByKeyboard()
{
    const QString savedIp = m_session.addresses().constFirst();
    const QString otherIp = m_session.addresses().at(1);
    const QString comment = QStringLiteral("No mouse was here");
    keyboardStep(QStringLiteral("save the device %1 as \"%2\"").arg(savedIp, firstProject), [=] {
        m_hand.tabTo(QStringLiteral("Device"));
        m_hand.pressKey(Qt::Key_Home);
        m_hand.onNextDialog([=](QDialog *) {
            // The proposed name is selected, so that the typed one replaces it.
            m_hand.type(firstProject);
            m_hand.tabTo(QStringLiteral("Commect"));
            m_hand.pressKey(Qt::Key_End);
            for (int rest = QStringLiteral("yyyyMMdd_hhmmss").length(); rest > 0; --rest)
                m_hand.pressKey(Qt::Key_Backspace);
            m_hand.type(comment);
            m_hand.tabTo(QStringLiteral("OK"));
            m_hand.takePicture(QStringLiteral("13-keyboard-name-and-comment"));
            m_hand.pressKey(Qt::Key_Space);
        });
        m_hand.tabTo(QStringLiteral("Save Project"));
        m_hand.pressKey(Qt::Key_Space);
        m_hand.waitUntilIdle();
        expectProjects({firstProject});
        const QString difference =
            packageDifference(projectPath(firstProject), m_session.hardware(savedIp)->state(), firstProject, comment);
        require(difference.isEmpty(), difference);
        return QStringLiteral("the package is what the device is");
    });
    const QString project = QStringLiteral("By keys");
    keyboardStep(QStringLiteral("give it another name"), [=] {
        m_hand.onNextDialog([=](QDialog *) {
            m_hand.type(project);
            m_hand.pressKey(Qt::Key_Return);
        });
        m_hand.tabTo(QStringLiteral("Edit, ") + firstProject);
        m_hand.pressKey(Qt::Key_Space);
        expectProjects({project});
        return QStringLiteral("the row shows \"%1\"").arg(projects().constFirst());
    });
    keyboardStep(QStringLiteral("apply it to the device %1").arg(otherIp), [=] {
        m_session.hardware(otherIp)->change([](Simulation::HardwareState &state) { state.backgrounds.clear(); });
        m_hand.tabTo(QStringLiteral("Device"));
        m_hand.pressKey(Qt::Key_Down);
        m_hand.onNextDialog([=](QDialog *) {
            m_hand.tabTo(QStringLiteral("No"));
            m_hand.pressKey(Qt::Key_Space);
        });
        m_hand.tabTo(QStringLiteral("Apply, ") + project);
        m_hand.takePicture(QStringLiteral("14-keyboard-focus-in-a-row"));
        m_hand.pressKey(Qt::Key_Space);
        m_hand.waitUntilIdle();
        const QString difference = m_session.hardware(otherIp)
                                       ->state()
                                       .configuration()
                                       .differencesTo(m_session.hardware(savedIp)->state().configuration())
                                       .join(QStringLiteral("; "));
        require(difference.isEmpty(), difference);
        return QStringLiteral("it is equal to the saved device");
    });
    keyboardStep(QStringLiteral("delete it"), [=] {
        // The first answer is taken back.
        m_hand.onNextDialog([=](QDialog *) { m_hand.pressKey(Qt::Key_Escape); });
        m_hand.tabTo(QStringLiteral("Delete, ") + project);
        m_hand.pressKey(Qt::Key_Space);
        m_hand.waitUntilIdle();
        require(QFileInfo::exists(projectPath(project)), QStringLiteral("Escape did not keep the project"));
        m_hand.onNextDialog([=](QDialog *) {
            m_hand.tabTo(QStringLiteral("Yes"));
            m_hand.pressKey(Qt::Key_Space);
        });
        m_hand.pressKey(Qt::Key_Space);
        expectProjects({});
        require(!QFileInfo::exists(projectPath(project)), QStringLiteral("the file is still there"));
        return QStringLiteral("kept at Escape, gone at Yes");
    });
}
