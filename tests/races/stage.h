// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include "points.h"

#include <support/paneltesting.h>

#include <support/answerbook.h>
#include <support/customsite.h>
#include <support/objectcensus.h>
#include <support/warningguard.h>

#include <QSet>
#include <QTranslator>

#include <map>
#include <memory>
#include <optional>
#include <vector>

/// Shared by the tests of races: a panel with devices and packages, an operator, disturbances at chosen points, and the
/// invariants that hold once everything is at rest.
namespace Races {

/// The operator's actions.
enum Operation { Save, Apply, ApplyWithBackup, ApplyOthers, Import, SaveAs, SaveAllAs, Edit, Delete, DeleteAll, Scan };
constexpr int operationCount = Scan + 1;
QString nameOf(Operation operation);

/// Disturbances from outside.
enum Disturbance {
    PanelClosed,
    PanelReopened,
    PanelHidden,
    DeviceUnplugged,
    DeviceUnpluggedAndPlugged,
    DeviceForgotten,
    DeviceAdded,
    OtherDeviceActive,
    NoDeviceActive,
    LanguageSwitched,
    PackageDeleted,
    PackageReplaced,
    PackageTruncated,
    PackageAdded,
    CancelPressed,
    PackageTouched,
    PackageEdited,
    PackageOverwritten,
    ExtractedFilesReplaced
};
constexpr int disturbanceCount = ExtractedFilesReplaced + 1;
/// True if only files are affected: devices and panel are untouched.
bool isOfFiles(Disturbance disturbance);
QString nameOf(Disturbance disturbance);

extern const QString richIp;    ///< online, with pictures and presets; the active one at first
extern const QString plainIp;   ///< online, without
extern const QString offlineIp; ///< offline, with pictures
extern const QString foreignIp; ///< online, of another model

/// The contents of replacement packages, unlike those of any other device.
Simulation::HardwareState replacementDevice();

/// The operator's answers to an operation's dialogs.
struct Answers
{
    QMessageBox::StandardButton question = QMessageBox::No;
    bool acceptsDialogs = true;
    /// For the property dialog; a null name keeps the proposed one.
    QString name;
    QString comment;
    /// For the file dialogs.
    QStringList paths;
};

class Stage
{
public:
    Stage();
    ~Stage();
    Q_DISABLE_COPY(Stage)

    void openPanel();
    void closePanel();

    /// Adds a package of that device to the projects directory, complete when it appears.
    void addPackage(const QString &name, const Simulation::HardwareState &state);
    /// A package of that device elsewhere. Returns its path.
    QString packageElsewhere(const QString &fileName, const Simulation::HardwareState &state);
    QString elsewhere(const QString &fileName) const { return m_elsewhere.filePath(fileName); }
    /// The answer to the operation's file dialog: for an import two new packages "first" and "second" of that device,
    /// for a copy a place elsewhere.
    QStringList filesFor(Operation operation, const Simulation::HardwareState &state);

    void select(const QString &ip);
    /// Presses the operation's button (that of `row` for operations on a row) from the event loop. False if there is
    /// nothing to press.
    bool press(Operation operation, const Answers &answers, const QString &row = QString());
    /// Carries out the disturbance on these, where it needs a device or a package.
    void disturb(Disturbance disturbance, const QString &ip, const QString &package);
    /// True if the disturbance arrives through the event loop, not at any moment.
    static bool isOfTheEventLoop(Disturbance disturbance);

    /// Runs the event loop until no job, pool task or dialog is left. False if that takes more than a minute.
    bool comesToRest();
    /// Lists, plugs in and activates everything again.
    void repairSite();
    /// The invariants violated at rest; empty if there are none. Packages present at the last call and not in `touched`
    /// must be unchanged, byte for byte, and no others may have appeared.
    QStringList brokenTruths(const QSet<QString> &touched);
    /// The same for a closed panel. Then opens a new panel, which must list the same projects.
    QStringList brokenTruthsAfterClosing(const QSet<QString> &touched);

    bool hasPanel() const { return m_panel.has_value(); }
    PanelTesting::Panel &panel() { return *m_panel; }
    TestSupport::CustomSite &site() { return *m_site; }
    Points &points() { return m_points; }
    /// Changed or added by disturbances since the last check.
    QSet<QString> disturbedPackages() const { return m_disturbedPackages; }
    /// The texts of the boxes shown since press().
    QStringList boxes() const { return m_boxes; }

private:
    void editInPlace(const QString &package);
    void overwriteInPlace(const QString &package);
    void replaceExtractedFiles();
    void answer(QDialog *dialog);
    void pressLater(QAbstractButton *button);
    bool isAtRest() const;
    QStringList brokenJobTruths() const;
    QStringList brokenListTruths();
    QStringList brokenPackageTruths(const QSet<QString> &touched);

    TestSupport::ObjectCensus m_census;
    QTemporaryDir m_elsewhere;
    std::optional<TestSupport::CustomSite> m_site;
    std::vector<std::shared_ptr<Model::Device>> m_devices;
    std::unique_ptr<QTranslator> m_chinese;
    TestSupport::AnswerBook m_book;
    std::optional<PanelTesting::Panel> m_panel;
    Points m_points;
    Answers m_answers;
    QStringList m_boxes;
    QStringList m_surprises;
    /// Damaged by disturbances.
    QSet<QString> m_damaged;
    /// May have been listed by this panel before: a known package is not read again.
    QSet<QString> m_damagedWhileListed;
    QSet<QString> m_disturbedPackages;
    QSet<QString> m_disturbedDevices;
    std::map<QString, QByteArray> m_known;
    std::vector<std::unique_ptr<TestSupport::ExpectMessage>> m_expected;
    int m_added = 0;
};

/// Checked without the product: the archive is intact, and its record matches it.
bool isValidPackage(const QString &path);
/// The names of a package's entries, in order; empty if it is no archive.
QStringList entriesOf(const QString &path);
/// The names of all files in the projects directory, valid or not.
QStringList packageNames();

} // namespace Races
