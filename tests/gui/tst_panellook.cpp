#include "translatedtexts.h"
#include <support/paneltesting.h>

#include <engineerpropertysettingwidget.h>

#include <core/look.h>
#include <model/deviceeditor.h>
#include <support/testmain.h>

#include <QHeaderView>
#include <QLineEdit>
#include <QStyleOptionButton>
#include <QStyleOptionComboBox>
#include <QTextEdit>

using namespace PanelTesting;
using namespace TestSupport;

namespace {

/// Finds the parts of a window that clip their text or do not fit into the window.
class Clipping
{
public:
    explicit Clipping(const QWidget *window)
    {
        const QList<QWidget *> widgets = window->findChildren<QWidget *>();
        for (const QWidget *widget : widgets) {
            if (!widget->isVisible())
                continue;
            if (const auto *label = qobject_cast<const QLabel *>(widget))
                lookAt(label, label->text(), label->sizeHint(), label->size());
            else if (const auto *button = qobject_cast<const QPushButton *>(widget))
                lookAt(button, button->text(), textSize(button, button->text()), contentsSize(button));
            else if (const auto *tool = qobject_cast<const QToolButton *>(widget))
                lookAt(tool, tool->text(), iconAndTextSize(tool), tool->size());
            else if (const auto *combo = qobject_cast<const QComboBox *>(widget))
                lookAt(combo, combo->currentText(), textSize(combo, combo->currentText()), fieldSize(combo));
            else if (const auto *header = qobject_cast<const QHeaderView *>(widget))
                lookAt(header);
            if (!qobject_cast<const QAbstractScrollArea *>(widget->parentWidget()) &&
                !widget->parentWidget()->rect().contains(widget->geometry()))
                complain(widget, QStringLiteral("outside of its parent"), widget->geometry().size(),
                         widget->parentWidget()->size());
        }
    }

    bool isNothing() const { return m_complaints.isEmpty(); }
    QString text() const { return m_complaints.join(QLatin1Char('\n')); }
    /// The number of texts checked.
    int looks() const { return m_looks; }

private:
    static QSize textSize(const QWidget *widget, const QString &text)
    {
        return widget->fontMetrics().size(Qt::TextShowMnemonic, text);
    }

    /// The style draws a frame around the icon, four pixels and the text.
    static QSize iconAndTextSize(const QToolButton *button)
    {
        const int frame = 2 * button->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, button);
        const int icon = button->icon().isNull() ? 0 : button->iconSize().width() + 4;
        return textSize(button, button->text()) + QSize(icon + frame, frame);
    }

    static QSize contentsSize(const QPushButton *button)
    {
        QStyleOptionButton option;
        option.initFrom(button);
        option.text = button->text();
        return button->style()->subElementRect(QStyle::SE_PushButtonContents, &option, button).size();
    }

    /// The field minus the one-pixel margin that the style keeps on each side.
    static QSize fieldSize(const QComboBox *combo)
    {
        QStyleOptionComboBox option;
        option.initFrom(combo);
        option.subControls = QStyle::SC_All;
        option.currentText = combo->currentText();
        const QRect field =
            combo->style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, combo);
        return field.adjusted(1, 0, -1, 0).size();
    }

    void lookAt(const QWidget *widget, const QString &text, const QSize &needed, const QSize &given)
    {
        if (text.isEmpty())
            return;
        ++m_looks;
        if (needed.width() > given.width() || needed.height() > given.height())
            complain(widget, text, needed, given);
    }

    void lookAt(const QHeaderView *header)
    {
        for (int section = 0; section < header->count(); ++section) {
            const QString text = header->model()->headerData(section, header->orientation()).toString();
            const QSize needed(header->sectionSizeHint(section), header->sizeHint().height());
            lookAt(header, text, needed, QSize(header->sectionSize(section), header->height()));
        }
    }

    void complain(const QWidget *widget, const QString &text, const QSize &needed, const QSize &given)
    {
        m_complaints.append(QStringLiteral("%1 \"%2\" needs %3 x %4 and has %5 x %6")
                                .arg(QLatin1String(widget->metaObject()->className()), text)
                                .arg(needed.width())
                                .arg(needed.height())
                                .arg(given.width())
                                .arg(given.height()));
    }

    QStringList m_complaints;
    int m_looks = 0;
};

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

} // namespace

/// The panel and its dialog in the host's look. QT_SCALE_FACTOR runs it at other scales.
class TstPanelLook : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void scale_is_the_one_that_was_asked_for();
    void empty_panel_shows_its_texts_whole_data() { languages(); }
    void empty_panel_shows_its_texts_whole();
    void full_panel_shows_its_texts_whole_data() { languages(); }
    void full_panel_shows_its_texts_whole();
    void long_device_texts_fit_into_the_selector();
    void the_style_sheet_leaves_fixed_sizes_alone();
    void property_dialog_shows_its_texts_whole_data() { languages(); }
    void property_dialog_shows_its_texts_whole();

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
    QVERIFY(clearProjectFilesDirectory());
}

void TstPanelLook::languages()
{
    QTest::addColumn<QString>("language");
    QTest::newRow("en") << QStringLiteral("en");
    QTest::newRow("zh_CN") << QStringLiteral("zh_CN");
}

void TstPanelLook::scale_is_the_one_that_was_asked_for()
{
    const QWidget window;
    const QString asked = qEnvironmentVariable("QT_SCALE_FACTOR", QStringLiteral("1"));
    QCOMPARE(window.devicePixelRatioF(), asked.toDouble());
}

void TstPanelLook::empty_panel_shows_its_texts_whole()
{
    QFETCH(QString, language);
    const TranslatedTexts texts(language);
    QVERIFY(texts.areFound());
    const TestSite site;
    const Panel panel;
    panel->resize(1000, 640);
    panel->show();
    settle();
    keepPicture(panel.widget.get(), QStringLiteral("panel_empty"));
    const Clipping clipping(panel.widget.get());
    QVERIFY2(clipping.isNothing(), qPrintable(clipping.text()));
    QVERIFY(clipping.looks() >= 10);
}

void TstPanelLook::full_panel_shows_its_texts_whole()
{
    QFETCH(QString, language);
    const TranslatedTexts texts(language);
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
    const Clipping clipping(panel.widget.get());
    QVERIFY2(clipping.isNothing(), qPrintable(clipping.text()));
    QVERIFY(clipping.looks() >= 10 + 10 * 4);
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
        const Clipping clipping(panel.widget.get());
        QVERIFY2(clipping.isNothing(), qPrintable(clipping.text()));
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
    const TranslatedTexts texts(language);
    QVERIFY(texts.areFound());
    EngineerPropertySettingWidget dialog(nullptr, QString(), QString());
    dialog.setProjectName(QStringLiteral("Project11"));
    dialog.setComment(QStringLiteral("Opening with the new beams, checked by both operators before doors opened. "
                                     "Do not change this."));
    dialog.show();
    QCoreApplication::processEvents();
    keepPicture(&dialog, QStringLiteral("property_dialog"));
    const Clipping clipping(&dialog);
    QVERIFY2(clipping.isNothing(), qPrintable(clipping.text()));
    QVERIFY(clipping.looks() >= 5);

    // A comment of the maximum length is visible without scrolling.
    const auto *comment = dialog.findChild<QTextEdit *>();
    QVERIFY(comment->document()->size().height() <= comment->viewport()->height());
}

TEST_MAIN(TstPanelLook)
#include "tst_panellook.moc"
