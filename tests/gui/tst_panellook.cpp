// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "translatedtexts.h"
#include <support/paneltesting.h>

#include <engineerpropertysettingwidget.h>

#include <core/look.h>
#include <model/deviceeditor.h>
#include <support/pseudolanguage.h>
#include <support/screencheck.h>
#include <support/testmain.h>
#include <udiskselectwidget.h>
#include <widgets/framelessmessagebox.h>
#include <widgets/waitingdialog.h>

#include <QHeaderView>
#include <QLineEdit>
#include <QScrollBar>
#include <QTextEdit>
#include <QXmlStreamReader>

#include <optional>

using namespace PanelTesting;
using namespace TestSupport;

namespace {

/// Saves a screenshot of the window to the folder named by the environment.
void keepPicture(QWidget *window, const QString &name)
{
    const QString folder = qEnvironmentVariable("PROJECTFILECFG_SCREENSHOTS");
    if (folder.isEmpty())
        return;
    const QString path = QStringLiteral("%1/%2_%3_x%4.png")
                             .arg(folder, name, QString::fromLatin1(QTest::currentDataTag()))
                             .arg(window->devicePixelRatioF());
    QVERIFY2(QDir().mkpath(folder) && window->grab().save(path), qPrintable(path));
}

constexpr char panelContext[] = "ProjectFileCfg::Internal::EngineerDocOperWidget";

/// Every source text of the panel.
QStringList textsOfThePanel()
{
    QFile file(QStringLiteral(PRODUCT_TEXTS));
    if (!file.open(QIODevice::ReadOnly))
        return QStringList();
    QStringList texts;
    QString context;
    for (QXmlStreamReader xml(&file); !xml.atEnd();) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == QLatin1String("name"))
            context = xml.readElementText();
        else if (xml.name() == QLatin1String("source") && context == QLatin1String(panelContext))
            texts.append(xml.readElementText());
    }
    return texts;
}

/// The texts in one of languages().
class Texts
{
public:
    explicit Texts(const QString &language)
    {
        if (language == QStringLiteral("pseudo"))
            m_pseudo.emplace();
        else
            m_texts.emplace(language);
    }
    bool areFound() const { return m_pseudo || m_texts->areFound(); }

private:
    std::optional<TranslatedTexts> m_texts;
    std::optional<PseudoLanguage> m_pseudo;
};

/// What is wrong with the screen in the language of the current row.
QStringList wrongIn(QWidget *window, const QStringList &ofTheUser)
{
    QStringList wrong = ScreenCheck::clipped(window);
    if (QByteArray(QTest::currentDataTag()).startsWith("pseudo"))
        wrong += ScreenCheck::untranslated(window, ofTheUser);
    return wrong;
}

/// Names and comments, and what the site says of its devices.
const QStringList ofTheUser{QString::fromUtf8("开幕式 2026"),
                            QString::fromUtf8("开幕式，最终版本"),
                            QStringLiteral("Opening with the new beams, checked by both operators before doors"),
                            QStringLiteral("Project"),
                            QStringLiteral("Main hall"),
                            QStringLiteral("Side stage"),
                            QStringLiteral("Touring rack"),
                            QStringLiteral("Foyer"),
                            QStringLiteral("Store room"),
                            QStringLiteral("ST-1600"),
                            QStringLiteral("ST-400"),
                            QStringLiteral("/")};

} // namespace

#define VERIFY_SCREEN(window, ofTheUser)                                                                               \
    do {                                                                                                               \
        const QStringList wrong = wrongIn(window, ofTheUser);                                                          \
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join(QLatin1Char('\n'))));                                          \
    } while (false)

/// The panel and its dialog in the host's look. QT_SCALE_FACTOR runs it at other scales.
class TstPanelLook : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void requested_scale_is_used();
    void empty_panel_shows_its_texts_whole_data() { languages(); }
    void empty_panel_shows_its_texts_whole();
    void full_panel_shows_its_texts_whole_data() { languages(); }
    void full_panel_shows_its_texts_whole();
    void long_device_texts_fit_into_the_selector();
    void the_style_sheet_leaves_fixed_sizes_alone();
    void property_dialog_shows_its_texts_whole_data() { languages(); }
    void property_dialog_shows_its_texts_whole();
    void disk_dialog_shows_its_texts_whole_data() { languages(); }
    void disk_dialog_shows_its_texts_whole();
    void boxes_show_every_text_whole_data() { languages(); }
    void boxes_show_every_text_whole();
    void waiting_dialog_shows_every_text_whole_data() { languages(); }
    void waiting_dialog_shows_every_text_whole();
    void the_comment_stays_readable_in_a_narrow_panel_data();
    void the_comment_stays_readable_in_a_narrow_panel();

private:
    void languages();
};

void TstPanelLook::initTestCase()
{
    Core::applyLook();
    QVERIFY(!qApp->styleSheet().isEmpty());
}

void TstPanelLook::init()
{
    WarningGuard::clear();
    Core::applyLook();
    QVERIFY(clearProjectFilesDirectory());
}

void TstPanelLook::languages()
{
    QTest::addColumn<QString>("language");
    QTest::newRow("en") << QStringLiteral("en");
    QTest::newRow("zh_CN") << QStringLiteral("zh_CN");
    QTest::newRow("pseudo") << QStringLiteral("pseudo");
}

void TstPanelLook::requested_scale_is_used()
{
    const QWidget window;
    const QString asked = qEnvironmentVariable("QT_SCALE_FACTOR", QStringLiteral("1"));
    QCOMPARE(window.devicePixelRatioF(), asked.toDouble());
}

void TstPanelLook::empty_panel_shows_its_texts_whole()
{
    QFETCH(QString, language);
    const Texts texts(language);
    QVERIFY(texts.areFound());
    const TestSite site;
    const Panel panel;
    panel->resize(1000, 640);
    panel->show();
    settle();
    keepPicture(panel.widget.get(), QStringLiteral("panel_empty"));
    VERIFY_SCREEN(panel.widget.get(), ofTheUser);
    QVERIFY(ScreenCheck::texts(panel.widget.get()).count() >= 10);
}

void TstPanelLook::full_panel_shows_its_texts_whole()
{
    QFETCH(QString, language);
    const Texts texts(language);
    QVERIFY(texts.areFound());
    const TestSite site;
    const QStringList comments{QStringLiteral("20261121_193000"),
                               QStringLiteral("Opening with the new beams, checked by both operators before doors"),
                               QStringLiteral("开幕式，最终版本"), QString()};
    for (int i = 0; i < 10; ++i)
        QVERIFY(
            writePackage(projectFile(i == 3 ? QStringLiteral("开幕式 2026") : QStringLiteral("Project%1").arg(10 - i)),
                         comments.at(i % comments.count()), i));
    const Panel panel;
    panel->resize(1000, 760);
    panel->show();
    settle();
    QCOMPARE(panel.table()->rowCount(), 10);
    QCoreApplication::processEvents();
    keepPicture(panel.widget.get(), QStringLiteral("panel_full"));
    VERIFY_SCREEN(panel.widget.get(), ofTheUser);
    QVERIFY(ScreenCheck::texts(panel.widget.get()).count() >= 10 + 10 * 4);
}

void TstPanelLook::long_device_texts_fit_into_the_selector()
{
    const TestSite site;
    const std::shared_ptr<Model::Device> device = site->device(QStringLiteral("192.168.1.11"));
    const Panel panel;
    panel->resize(1000, 640);
    QString name = QStringLiteral("Hall");
    for (int length = 4; length < 60; ++length) {
        name += QChar('a' + length % 26);
        Model::DeviceEditor editor(*device);
        Model::DeviceData data = editor.data();
        data.name = name;
        editor.replace(data);
        panel->hide();
        panel->show();
        QCOMPARE(ScreenCheck::clipped(panel.widget.get()), QStringList());
    }
    QVERIFY(panel.deviceCombo()->currentText() != device->getDeviceInfo());
}

void TstPanelLook::the_style_sheet_leaves_fixed_sizes_alone()
{
    const TestSite site;
    QVERIFY(writePackage(projectFile(QStringLiteral("Project1")), QString()));
    const Panel panel;
    panel->resize(1000, 640);
    panel->show();
    settle();
    QCOMPARE(panel.deviceCombo()->size(), QSize(300, 36));
    for (const QPushButton *button :
         {panel.saveProject(), panel.importProject(), panel.applyOthers(), panel.allSaveAs(), panel.allDelete()}) {
        QCOMPARE(button->size(), button->maximumSize());
        QCOMPARE(button->height(), 30);
    }
    QCOMPARE(panel.table()->rowHeight(0), 48);
    QCOMPARE(panel.separator()->height(), 1);

    EngineerPropertySettingWidget dialog(nullptr, QString(), QString());
    dialog.show();
    QCOMPARE(dialog.size(), QSize(748, 280));
    QCOMPARE(dialog.findChild<QLineEdit *>()->size(), QSize(240, 36));
}

void TstPanelLook::property_dialog_shows_its_texts_whole()
{
    QFETCH(QString, language);
    const Texts texts(language);
    QVERIFY(texts.areFound());
    EngineerPropertySettingWidget dialog(nullptr, QString(), QString());
    dialog.setProjectName(QStringLiteral("Project11"));
    dialog.setComment(QStringLiteral("Opening with the new beams, checked by both operators before doors opened. "
                                     "Do not change this."));
    dialog.show();
    QCoreApplication::processEvents();
    keepPicture(&dialog, QStringLiteral("property_dialog"));
    VERIFY_SCREEN(&dialog, {});
    QVERIFY(ScreenCheck::texts(&dialog).count() >= 5);

    // A comment of the maximum length is visible without scrolling.
    const auto *comment = dialog.findChild<QTextEdit *>();
    QVERIFY(comment->document()->size().height() <= comment->viewport()->height());
}

void TstPanelLook::disk_dialog_shows_its_texts_whole()
{
    QFETCH(QString, language);
    const Texts texts(language);
    QVERIFY(texts.areFound());
    UDiskSelectWidget dialog(nullptr,
                             {{QStringLiteral("/dev/sdb1"), QStringLiteral("/mnt/sdb1"), QStringLiteral("A")}});
    dialog.show();
    QCoreApplication::processEvents();
    keepPicture(&dialog, QStringLiteral("disk_dialog"));
    VERIFY_SCREEN(&dialog, {QStringLiteral("A[/mnt/sdb1]")});
}

void TstPanelLook::boxes_show_every_text_whole()
{
    QFETCH(QString, language);
    const Texts texts(language);
    QVERIFY(texts.areFound());
    const QStringList sources = textsOfThePanel();
    QVERIFY(sources.count() > 30);
    const QString name = QString(40, QLatin1Char('W'));
    for (const QString &source : sources) {
        QStringList wrong{QStringLiteral("no box opened")};
        QTimer::singleShot(0, qApp, [&] {
            auto *box = qobject_cast<QDialog *>(QApplication::activeModalWidget());
            QCoreApplication::processEvents();
            if (source.startsWith(QStringLiteral("Whether")))
                keepPicture(box, QStringLiteral("question"));
            wrong = wrongIn(box, {name});
            box->reject();
        });
        const QString text = QCoreApplication::translate(panelContext, source.toUtf8().constData());
        HX::Widgets::FramelessMessageBox::question(nullptr, QCoreApplication::translate(panelContext, "Remind"),
                                                   text.contains(QStringLiteral("%1")) ? text.arg(name) : text,
                                                   QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join(QLatin1Char('\n'))));
    }
}

void TstPanelLook::waiting_dialog_shows_every_text_whole()
{
    QFETCH(QString, language);
    const Texts texts(language);
    QVERIFY(texts.areFound());
    auto *dialog = Corvel::Widgets::WaitingDialog::instance();
    dialog->setCanelVisible(true);
    dialog->setButtonText(QCoreApplication::translate(panelContext, "Cancel"));
    const QString name = QString(40, QLatin1Char('W'));
    for (const QString &source : textsOfThePanel()) {
        const QString text = QCoreApplication::translate(panelContext, source.toUtf8().constData());
        dialog->showWaitingDialog(text.contains(QStringLiteral("%1")) ? text.arg(name) : text, 0);
        VERIFY_SCREEN(dialog, {name});
    }
    keepPicture(dialog, QStringLiteral("waiting"));
    dialog->hideWaitingDialog();
}

void TstPanelLook::the_comment_stays_readable_in_a_narrow_panel_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<QFont>("font");
    QFont large = QApplication::font();
    large.setPixelSize(20);
    for (const char *language : {"en", "zh_CN", "pseudo"}) {
        QTest::addRow("%s", language) << QString::fromLatin1(language) << QApplication::font();
        QTest::addRow("%s, large", language) << QString::fromLatin1(language) << large;
    }
}

void TstPanelLook::the_comment_stays_readable_in_a_narrow_panel()
{
    QFETCH(QString, language);
    QFETCH(QFont, font);
    const Texts texts(language);
    QVERIFY(texts.areFound());
    QApplication::setFont(font);
    const TestSite site;
    const QString timeStamp = QStringLiteral("20261121_193000");
    QVERIFY(writePackage(projectFile(QStringLiteral("Evening show")), timeStamp));
    const Panel panel;
    // What a window of 1024 x 600 leaves.
    panel->resize(720, 480);
    panel->show();
    settle();
    QTableWidget *table = panel.table();
    const QFontMetrics metrics = table->fontMetrics();
    QVERIFY(table->columnWidth(1) >= metrics.horizontalAdvance(timeStamp) + 16);
    QCOMPARE(table->columnWidth(0), 340);
    QVERIFY(table->columnWidth(2) >= 340);

    // Also after it was wide: then more of it would hide its beginning.
    const int width = table->columnWidth(1);
    panel->resize(1400, 480);
    QCoreApplication::processEvents();
    QVERIFY(table->columnWidth(1) > width);
    panel->resize(720, 480);
    QCoreApplication::processEvents();
    QCOMPARE(table->columnWidth(1), width);

    // The buttons are scrolled to by hand, and by Tab.
    QScrollBar *bar = table->horizontalScrollBar();
    QVERIFY(bar->maximum() > 0);
    QToolButton *last = panel.rowButtons(0).last();
    const auto isInSight = [&] {
        return table->viewport()->rect().contains(QRect(last->mapTo(table->viewport(), QPoint()), last->size()));
    };
    QVERIFY(!isInSight());
    bar->setValue(bar->maximum());
    QVERIFY(isInSight());
    if (language != QStringLiteral("pseudo"))
        QVERIFY(table->visualRect(table->model()->index(0, 1)).left() >= 0);
    keepPicture(panel.widget.get(), QStringLiteral("panel_narrow"));
    bar->setValue(0);
    last->setFocus(Qt::TabFocusReason);
    QVERIFY(isInSight());
}

TEST_MAIN(TstPanelLook)
#include "tst_panellook.moc"
