#pragma once

#include <support/paneltesting.h>

#include <support/answerbook.h>
#include <support/customsite.h>
#include <support/objectcensus.h>
#include <support/warningguard.h>

#include <simulation/journal.h>

#include <QSet>
#include <QTranslator>

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

/// What the tests of races share: a panel with devices and packages, a hand that operates it, the world that disturbs
/// it at chosen points, and what must be true whenever all has come to rest.
namespace Races {

/// What the operator does.
enum Operation { Save, Apply, ApplyWithBackup, ApplyOthers, Import, SaveAs, SaveAllAs, Edit, Delete, DeleteAll, Scan };
constexpr int operationCount = Scan + 1;
QString nameOf(Operation operation);

/// What happens meanwhile.
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
/// True for what happens to files alone: devices and panel are not touched.
bool isOfFiles(Disturbance disturbance);
QString nameOf(Disturbance disturbance);

extern const QString richIp;    ///< online, with pictures and presets; the active one at first
extern const QString plainIp;   ///< online, without
extern const QString offlineIp; ///< offline, with pictures
extern const QString foreignIp; ///< online, of another model

/// What the packages hold that replace others: nothing of it is like what any other device holds.
Simulation::HardwareState replacementDevice();

/// The points at which something can be done to a running operation: every call that the host receives, on whichever
/// thread, and every dialog that opens.
class Points
{
public:
    Points();
    ~Points();
    Q_DISABLE_COPY(Points)

    /// Counts from zero again. User-interface thread.
    void start();
    /// Has `act` done on the user-interface thread at that point, counted from 1, while the thread that reached it is
    /// held there. A call that the user-interface thread itself makes is not held if `fromEventLoop` is true, since
    /// people and windows act through the event loop alone: then `act` comes as the next event.
    void at(int point, bool fromEventLoop, std::function<void()> act);
    /// How many there were since start(). What is done at a point has none of its own.
    int passed() const;
    /// Forgets what has not been done.
    void forget();
    /// For the dialogs.
    void pass();

private:
    struct State;
    const std::shared_ptr<State> m_state;
    QMetaObject::Connection m_connection;
};

/// How the operator answers what an operation asks.
struct Answers
{
    QMessageBox::StandardButton question = QMessageBox::No;
    bool acceptsDialogs = true;
    /// For the property dialog; a null name leaves what it proposes.
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

    /// A package with that device in the projects directory, which appears there complete.
    void addPackage(const QString &name, const Simulation::HardwareState &state);
    /// A package with that device elsewhere. Returns its path.
    QString packageElsewhere(const QString &fileName, const Simulation::HardwareState &state);
    QString elsewhere(const QString &fileName) const { return m_elsewhere.filePath(fileName); }
    /// What the file dialog of that operation is answered with: two new packages "first" and "second" with that device
    /// to import, or a place elsewhere to copy to.
    QStringList filesFor(Operation operation, const Simulation::HardwareState &state);

    void select(const QString &ip);
    /// Presses the button of that operation, for a row's operation that of `row`, as soon as the event loop runs. False
    /// when there is nothing to be pressed.
    bool press(Operation operation, const Answers &answers, const QString &row = QString());
    /// Does it. What the disturbance needs of a device or a package is done to these.
    void disturb(Disturbance disturbance, const QString &ip, const QString &package);
    /// True when the disturbance comes through the event loop and not at any moment.
    static bool isOfTheEventLoop(Disturbance disturbance);

    /// Runs the event loop until no job, no pool work and no dialog is left. False when that takes a minute.
    bool comesToRest();
    /// Everything that is known, plugged in and active again.
    void repairSite();
    /// What must be true at rest and is not; empty when all is well. Packages that were there at the last call and are
    /// not in `touched` must be what they were, byte for byte, and no others may have come.
    QStringList brokenTruths(const QSet<QString> &touched);
    /// The same, and what must be true once the panel is closed. The next panel then lists what the first one did.
    QStringList brokenTruthsAfterClosing(const QSet<QString> &touched);

    bool hasPanel() const { return m_panel.has_value(); }
    PanelTesting::Panel &panel() { return *m_panel; }
    TestSupport::CustomSite &site() { return *m_site; }
    Points &points() { return m_points; }
    /// Those that disturbances have changed since the last look at the truths, or may have brought.
    QSet<QString> disturbedPackages() const { return m_disturbedPackages; }
    /// The boxes that were shown since press(), as their texts.
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
    /// Those that this panel may have listed before: a package that is known is not read again.
    QSet<QString> m_damagedWhileListed;
    QSet<QString> m_disturbedPackages;
    QSet<QString> m_disturbedDevices;
    std::map<QString, QByteArray> m_known;
    std::vector<std::unique_ptr<TestSupport::ExpectMessage>> m_expected;
    int m_added = 0;
};

/// Independent of the product: the archive is whole, and its record fits it.
bool isValidPackage(const QString &path);
/// The names of a package's entries, in order; empty when it is no archive.
QStringList entriesOf(const QString &path);
/// The names of what lies in the projects directory, whether it is valid or not.
QStringList packageNames();

} // namespace Races
