// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QDialog>
#include <QIcon>
#include <QImage>
#include <QJsonObject>
#include <QLineEdit>
#include <QPixmap>
#include <QTranslator>
#include <QVector>

#include <any>
#include <functional>
#include <map>
#include <memory>
#include <vector>

#pragma GCC visibility push(default)

/// A host application as docs/integrating.md asks for it, with other paths, namespaces and names of classes and
/// enumerators where that page says that they may differ. It has one offline device.
namespace Acme {

using Key = QByteArray;

// ---- Plugins and modes

class PluginBase : public QObject
{
    Q_OBJECT
public:
    enum ShutdownFlag { AtOnce, Later };
    virtual bool initialize(const QStringList &arguments, QString *errorString) = 0;
    virtual void extensionsInitialized() = 0;
    virtual bool delayedInitialize() { return false; }
    virtual ShutdownFlag aboutToShutdown() { return AtOnce; }
    virtual QObject *remoteCommand(const QStringList &, const QString &, const QStringList &) { return nullptr; }
    virtual QList<QObject *> createTestObjects() const { return {}; }
    virtual bool installTranslator(const QString &path, const QString &fileBase, const QString &language);
    void addObject(QObject *object) { pool().append(object); }
    void removeObject(QObject *object) { pool().removeAll(object); }
    static QList<QObject *> &pool();

private:
    QTranslator m_translator;
};

struct Application
{
    enum OperatorDeviceType { Idle, Loading, Saving };
    static OperatorDeviceType s_running;
    static QString s_folder;
    static QString s_translations;
    static QString overrideLanguage() { return QStringLiteral("en"); }
    static QString trPath() { return s_translations; }
    static QString deviceConfigFilePath() { return s_folder + "/devices"; }
    static QString ExtractJsonPath() { return s_folder + "/extracted"; } // NOLINT(readability-identifier-naming)
    static void setOperatorType(OperatorDeviceType type, const QString &) { s_running = type; }
};

struct Mode : QObject
{
    using QObject::QObject;
    virtual void retranslateUi() = 0;
    virtual QWidget *toolBar() const = 0;
    virtual bool isSettingMode() const = 0;
    Key id() const { return m_id; }
    void setId(const Key &id) { m_id = id; }
    void setPriority(int) {}
    void setIcon(const QIcon &) {}
    void setDisplayName(const QString &) {}
    void setToolTip(const QString &) {}
    void setEnabled(bool) {}
    void setVisible(bool) {}
    void addStateIcon(int, const QIcon &) {}

private:
    Key m_id;
};

class SubModes : public QObject
{
    Q_OBJECT
public:
    static SubModes *instance();
    Key currentModeId() const { return m_current; }
    void activateMode(const Key &id) { emit currentModeChanged(m_current = id, Key()); }
    bool containsMode(const Key &id) const { return modes().contains(id); }
    void addMode(Mode *mode) { m_modes.append(mode->id()); }
    void removeMode(Mode *mode) { m_modes.removeAll(mode->id()); }
    QVector<Key> modes() const { return m_modes; }

signals:
    void currentModeChanged(Acme::Key current, Acme::Key previous);

private:
    QVector<Key> m_modes;
    Key m_current;
};

struct Pages
{
    static QVector<Key> s_shown;
    static Pages *instance() { return nullptr; }
    static Key currentMode() { return "SettingCfg"; }
    static bool existCenterWidget(const Key &id) { return s_shown.contains(id); }
    static void addCenterWidget(const Key &id) { s_shown.append(id); }
    static void removeCenterWidget(const Key &id) { s_shown.removeAll(id); }
    static void setActivateCenterWidget(const Key &) {}
};

struct Theme
{
    static QIcon fromTheme(const QString &, const QString &) { return QIcon(); }
};

// ---- Widgets

struct Page : QWidget
{
    explicit Page(const Key &, QWidget *parent = nullptr)
        : QWidget(parent)
    {}
    void raiseWindow() { raise(); }
    virtual void enterWindow() { show(); }
    virtual void leaveWindow() { hide(); }
    virtual void retranslateUi() {}
};

struct Dialog : QDialog
{
    using QDialog::QDialog;
    void setBottomBarVisible(bool) {}
};

struct NameEdit : QLineEdit
{
    using QLineEdit::QLineEdit;
    void setEditText(const QString &text) { setText(text); }
};

class Busy : public QDialog
{
    Q_OBJECT
public:
    static Busy *instance(QWidget *parent = nullptr, int level = 0);
    void showWaitingDialog(const QString &, int) { show(); }
    void hideWaitingDialog() { hide(); }
    void setCanelVisible(bool) {}
    void setButtonText(const QString &) {}

signals:
    void signal_canelLoad();
};

// ---- Devices

template<typename T>
using Handle = std::weak_ptr<T>;

struct UnitConfig
{
    bool supportProjectFile = true;
    int exchangePos = 8;
};

struct Card
{
    int getType() const { return 1; }
    int getPos() const { return 1; }
    int getModelId() const { return 1; }
};

struct Output
{};

struct Scene
{
    quint16 getNumber() const { return 7; }
};

struct Still
{
    enum ParameterType { Pixels = 2 };
    int getType() const { return 0; }
    quint8 getKeyNo() const { return 3; }
    QString getName() const { return QStringLiteral("Stage"); }
    QSize size() const { return {16, 9}; }
    QString imageKey() const { return QStringLiteral("stage"); }
    void setThumb(const QImage &) {}
};

struct Unit : QObject
{
    enum ParameterType { Reset = 10 };
    enum DevicResetOrder { AllOfIt = 3 };
    explicit Unit(quint16 id, QObject *parent = nullptr)
        : QObject(parent)
        , m_id(id)
    {}
    QString getDeviceInfo() const { return QStringLiteral("Acme 1 at ") + getIPAddress(); }
    QString getTypeString() const { return QStringLiteral("Acme"); }
    QString getName() const { return QStringLiteral("Acme 1"); }
    QString getIPAddress() const { return QStringLiteral("10.0.0.1"); }
    QString getNetMask() const { return {}; }
    QString getGateWay() const { return {}; }
    QString getMAC() const { return {}; }
    QString getSN() const { return {}; }
    quint16 getId() const { return m_id; }
    int getModelID() const { return 1; }
    double getCommunicationProtocolNumber() const { return 1; }
    bool getDeviceOnlineFlag() const { return false; }
    bool getMVREnabled() const { return false; }
    const UnitConfig &deviceConfig() const { return m_config; }
    std::vector<std::shared_ptr<Card>> getSlots() const { return {}; }
    std::vector<Handle<Still>> getBKGs() const { return {m_still}; }
    std::vector<Handle<Still>> getLogos() const { return {}; }
    std::vector<std::shared_ptr<Scene>> getPresets() const { return {std::make_shared<Scene>()}; }
    std::vector<std::shared_ptr<Output>> getScreens() const { return {}; }
    void setIPAddress(const QString &) {}
    void setNetMask(const QString &) {}
    void setGateWay(const QString &) {}
    void setMAC(const QString &) {}
    void setId(quint16 id) { m_id = id; }
    void setCommunicationProtocol(double) {}
    void clearAll(bool) {}
    void clearMaterial() {}
    void clearPreset() {}
    void fromJson(const QJsonObject &) {}
    QJsonObject toJson() const { return {{QStringLiteral("name"), getName()}}; }

private:
    quint16 m_id;
    UnitConfig m_config;
    std::shared_ptr<Still> m_still = std::make_shared<Still>();
};

class Units : public QObject
{
    Q_OBJECT
public:
    static Units *instance();
    std::vector<std::shared_ptr<Unit>> getDevices() const { return {m_unit}; }
    std::shared_ptr<Unit> getDeviceByIPAddr(const QString &ip) const;
    std::shared_ptr<Unit> activeDevice() const { return m_unit; }
    void setActiveDevice(const std::weak_ptr<Unit> &) {}
    void clearScreenList(bool) {}
    void setActivedScreen(const std::shared_ptr<Output> &) {}
    void appendSelectedScreen(const std::shared_ptr<Output> &) {}
    const UnitConfig *findDeviceConfigByID(int) const { return &m_unit->deviceConfig(); }

signals:
    void signal_deviceChanged();

private:
    std::shared_ptr<Unit> m_unit = std::make_shared<Unit>(1);
};

struct Disk
{
    QString path;
    explicit Disk(QString configPath)
        : path(std::move(configPath))
    {}
    bool serailize();
};

// ---- Control, without any hardware: an online device could not be saved

enum Result { Done, Failed };
inline void ignoreProgress(int) {}

struct Link
{
    template<typename T>
    explicit Link(const std::shared_ptr<T> &)
    {}
    static Link *instance() { return nullptr; }
    static void cancelCurrentTask() {}
    quint64 calLogoMaterailCapacity(const Handle<Still> &, int, bool) const { return 0; }
    quint64 usedCapacity() const { return 0; }
    bool updateDeviceInfo(const std::map<Unit::ParameterType, std::any> &) { return false; }
    void setChannelExclusive(bool) {}
    void cancelOperator(const std::vector<unsigned char> &) {}
    bool canMVEEnable() const { return false; }
    bool enableMVR(bool, QString &) { return false; }
    bool copySlotDataToDevice(const std::shared_ptr<Unit> &) { return false; }
    bool copyMVRItemDataToDevice() { return false; }
    bool copyModelToDevice() { return false; }
    bool createMaterailFromImage(const QImage &, int, const QString &, int, const QSize &, const QString &)
    {
        return false;
    }
    bool queryMaterailData(const std::map<Still::ParameterType, std::any> &) { return false; }
    bool presetFullDetail2Binary(QByteArray &binary) { return !(binary = "scene").isEmpty(); }
    Result updateOnlineDevice(const QString &, const QString &, const std::function<void(int)> &) { return Failed; }
};

struct Pictures
{
    static Pictures *instance() { return nullptr; }
    QPixmap load(const QString &, QImage::Format) const { return {}; }
};

} // namespace Acme

#pragma GCC visibility pop
