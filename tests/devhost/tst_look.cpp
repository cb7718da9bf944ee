// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <core/hostsettings.h>
#include <core/look.h>

#include <support/testmain.h>

#include <QCheckBox>
#include <QComboBox>
#include <QGlyphRun>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QRawFont>
#include <QSpinBox>
#include <QTableWidget>
#include <QTextEdit>
#include <QTextLayout>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <cmath>
#include <functional>

Q_DECLARE_METATYPE(std::function<QWidget *()>)

namespace {

double luminance(QRgb colour)
{
    const auto linear = [](int channel) {
        const double value = channel / 255.0;
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(qRed(colour)) + 0.7152 * linear(qGreen(colour)) + 0.0722 * linear(qBlue(colour));
}

double contrast(QRgb a, QRgb b)
{
    const double first = luminance(a);
    const double second = luminance(b);
    return (qMax(first, second) + 0.05) / (qMin(first, second) + 0.05);
}

void setTextSize(int pixels)
{
    Core::HostSettings settings = Core::hostSettings();
    settings.textPixelSize = pixels;
    Core::applySettings(settings);
    Core::applyLook();
}

} // namespace

/// Measures the dark look as far as possible.
class TstLook : public QObject
{
    Q_OBJECT

private slots:
    void init() { setTextSize(0); }

    void focus_is_visible_data();
    void focus_is_visible();
    void the_text_has_the_size_that_was_set();
    void texts_of_other_sizes_grow_with_it();
    void emoji_have_a_font();
    void buttons_fit_their_text_plus_25_pixels();
};

void TstLook::focus_is_visible_data()
{
    using Make = std::function<QWidget *()>;
    QTest::addColumn<Make>("make");
    const auto row = [](const char *name, const Make &make) { QTest::newRow(name) << make; };
    row("button", [] { return new QPushButton(QStringLiteral("Save Project")); });
    row("default button", [] {
        auto *button = new QPushButton(QStringLiteral("OK"));
        button->setDefault(true);
        return button;
    });
    for (const char *property : {"EngineerDocOperBlue", "EngineerDocOperRed"}) {
        row(property, [property] {
            auto *button = new QToolButton;
            button->setText(QStringLiteral("Apply"));
            button->setProperty(property, true);
            button->setFocusPolicy(Qt::TabFocus);
            return button;
        });
    }
    for (const char *name : {"", "ModeButton", "NavigationButton"}) {
        row(*name ? name : "tool button", [name] {
            auto *button = new QToolButton;
            button->setObjectName(QLatin1String(name));
            button->setText(QStringLiteral("Settings"));
            button->setFixedHeight(40);
            return button;
        });
    }
    row("device card", [] {
        auto *button = new QPushButton;
        button->setObjectName(QStringLiteral("DeviceCard"));
        button->setFixedSize(216, 56);
        return button;
    });
    row("active device card", [] {
        auto *button = new QPushButton;
        button->setObjectName(QStringLiteral("DeviceCard"));
        button->setProperty("ActiveDevice", true);
        button->setFixedSize(216, 56);
        return button;
    });
    row("combo box", [] { return new QComboBox; });
    row("line edit", [] { return new QLineEdit(QStringLiteral("Project1")); });
    row("text edit", [] {
        auto *edit = new QTextEdit;
        edit->setProperty("EngineerDialogEdit", true);
        return edit;
    });
    row("log", [] {
        auto *edit = new QPlainTextEdit;
        edit->setObjectName(QStringLiteral("LogView"));
        return edit;
    });
    row("spin box", [] { return new QSpinBox; });
    row("radio button", [] { return new QRadioButton(QStringLiteral("SD[/mnt/sd]")); });
    row("check box", [] { return new QCheckBox(QStringLiteral("Check")); });
    row("table", [] { return new QTableWidget(3, 3); });
    row("empty table", [] { return new QTableWidget; });
    row("tree", [] { return new QTreeWidget; });
    row("list", [] { return new QListWidget; });
}

void TstLook::focus_is_visible()
{
    QFETCH(std::function<QWidget *()>, make);
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *other = new QWidget;
    other->setFocusPolicy(Qt::StrongFocus);
    QWidget *widget = make();
    layout->addWidget(other);
    layout->addWidget(widget);
    window.setStyleSheet(QStringLiteral(".QWidget { background: #2B2C31; }"));
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window, TestSupport::patience));
    const auto picture = [&] { return widget->grab().toImage().convertToFormat(QImage::Format_RGB32); };
    other->setFocus();
    QVERIFY(!widget->hasFocus());
    const QSize size = widget->size();
    const QImage without = picture();
    widget->setFocus(Qt::TabFocusReason);
    QVERIFY(widget->hasFocus());
    QCoreApplication::processEvents();
    const QImage with = picture();
    QCOMPARE(widget->size(), size);

    int visible = 0;
    for (int y = 0; y < with.height(); ++y) {
        for (int x = 0; x < with.width(); ++x)
            visible += contrast(with.pixel(x, y), without.pixel(x, y)) >= 3;
    }
    // A border around it, except at its rounded corners.
    const int needed = 2 * (with.width() + with.height()) - 32;
    QVERIFY2(visible >= needed, qPrintable(QStringLiteral("%1 of %2 pixels").arg(visible).arg(needed)));
}

void TstLook::the_text_has_the_size_that_was_set()
{
    // As without a desktop.
    QCOMPARE(QApplication::font().pixelSize(), 13);
    setTextSize(17);
    QCOMPARE(QApplication::font().pixelSize(), 17);
    // Larger texts do not fit into the fixed heights that plugins set.
    setTextSize(40);
    QCOMPARE(QApplication::font().pixelSize(), 20);
}

void TstLook::texts_of_other_sizes_grow_with_it()
{
    const auto heightOf = [](const char *name, const char *property) {
        QToolButton button;
        QLabel label;
        QWidget &widget = property ? static_cast<QWidget &>(button) : label;
        widget.setObjectName(QLatin1String(name));
        if (property)
            widget.setProperty(property, true);
        widget.ensurePolished();
        return widget.font().pixelSize();
    };
    QCOMPARE(heightOf("PageTitle", nullptr), 18);
    QCOMPARE(heightOf("", "EngineerDocOperBlue"), 12);
    setTextSize(20);
    QCOMPARE(heightOf("PageTitle", nullptr), 28);
    // Their column has a fixed width.
    QCOMPARE(heightOf("", "EngineerDocOperBlue"), 12);
}

void TstLook::emoji_have_a_font()
{
    QTextLayout layout(QStringLiteral("Evening 晚会 🎬"), QApplication::font());
    layout.beginLayout();
    layout.createLine();
    layout.endLayout();
    const QList<QGlyphRun> runs = layout.glyphRuns();
    QVERIFY(runs.size() >= 3);
    for (const QGlyphRun &run : runs) {
        const QVector<quint32> glyphs = run.glyphIndexes();
        QVERIFY2(!glyphs.contains(0), qPrintable(run.rawFont().familyName()));
    }
}

void TstLook::buttons_fit_their_text_plus_25_pixels()
{
    // Plugins make buttons 25 pixels wider than their text.
    for (const int size : {13, 20}) {
        setTextSize(size);
        QPushButton button(QStringLiteral("Import Project"));
        button.ensurePolished();
        QVERIFY(button.sizeHint().width() <= button.fontMetrics().horizontalAdvance(button.text()) + 25);
    }
}

TEST_MAIN(TstLook)
#include "tst_look.moc"
