// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "translatedtexts.h"
#include <support/paneltesting.h>

#include <support/answerbook.h>
#include <support/signalrecorder.h>
#include <support/testmain.h>

#include <widgets/waitingdialog.h>

#include <QHeaderView>
#include <QPointer>
#include <QStyledItemDelegate>

#include <tuple>

using namespace PanelTesting;
using namespace TestSupport;

namespace {

/// Translates every text of the panel to the same one.
class OneText : public QTranslator
{
public:
    explicit OneText(const QString &text)
        : m_text(text)
    {
        QCoreApplication::installTranslator(this);
    }
    ~OneText() override { QCoreApplication::removeTranslator(this); }

    bool isEmpty() const override { return false; }
    QString translate(const char *context, const char *, const char *, int) const override
    {
        return QLatin1String(context) == QLatin1String("ProjectFileCfg::Internal::EngineerDocOperWidget") ? m_text
                                                                                                          : QString();
    }

private:
    const QString m_text;
};

int textWidth(const QWidget *widget, const QString &text)
{
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    return widget->fontMetrics().width(text);
    QT_WARNING_POP
}

QStringList headerTexts(const Panel &panel)
{
    QStringList texts;
    for (int column = 0; column < panel.table()->columnCount(); ++column)
        texts.append(panel.table()->horizontalHeaderItem(column)->text());
    return texts;
}

QStringList texts(const QList<QToolButton *> &buttons)
{
    QStringList result;
    for (const QToolButton *button : buttons)
        result.append(button->text());
    return result;
}

QList<QPushButton *> commandButtons(const Panel &panel)
{
    return {panel.saveProject(), panel.importProject(), panel.applyOthers(), panel.allSaveAs(), panel.allDelete()};
}

/// A panel that lists New, Middle and Old, in that order, and tells which rows kept their widgets.
class ListedFiles
{
public:
    ListedFiles()
    {
        int age = 0;
        for (const QString &name : all())
            m_written = writePackage(projectFile(name), QStringLiteral("comment"), age += 10) && m_written;
        panel = std::make_unique<Panel>();
        settle();
        m_rowsAtFirst = rows();
    }

    static QStringList all() { return {QStringLiteral("New"), QStringLiteral("Middle"), QStringLiteral("Old")}; }
    bool isReady() const { return m_written && panel->names() == all(); }
    QAbstractItemModel *model() const { return panel->table()->model(); }
    QStringList untouched() const
    {
        const QMap<QString, Row> now = rows();
        QStringList names;
        for (const QString &name : all()) {
            if (now.contains(name) && now.value(name) == m_rowsAtFirst.value(name))
                names.append(name);
        }
        return names;
    }

private:
    /// The widgets of a table row. Guarded pointers, since a new widget may reuse an old one's address.
    using Row = std::tuple<QTableWidgetItem *, QTableWidgetItem *, QPointer<QWidget>>;

    QMap<QString, Row> rows() const
    {
        QMap<QString, Row> result;
        const QTableWidget *table = panel->table();
        for (int row = 0; row < table->rowCount(); ++row)
            result.insert(table->item(row, 0)->text(),
                          Row(table->item(row, 0), table->item(row, 1), table->cellWidget(row, 2)));
        return result;
    }

    const TestSite m_site;
    bool m_written = true;

public:
    std::unique_ptr<Panel> panel;

private:
    QMap<QString, Row> m_rowsAtFirst;
};

} // namespace

class TstPanelConstruction : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void slots_are_in_their_fixed_order();
    void the_host_knows_the_panel_by_its_id();
    void panel_is_marked_for_the_style_sheet();
    void layout_rows_are_in_their_order();
    void device_selector_has_a_fixed_size();
    void table_is_read_only();
    void separator_is_a_styled_line();
    void texts_are_those_of_the_panel();
    void command_buttons_share_one_width();
    void short_texts_give_buttons_of_125_by_30();
    void label_is_15_wider_than_its_text();
    void texts_follow_the_language();
    void rows_follow_the_language_after_a_scan();
    void the_host_names_its_cancel_button_before_operations();

    void command_buttons_run_their_operations();
    void row_buttons_run_their_operations();
    void after_many_refreshes_a_click_acts_once();

    void icons_come_with_the_library_data();
    void icons_come_with_the_library();
    void row_shows_file_and_comment();
    void file_names_lose_every_extension_in_small_letters_data();
    void file_names_lose_every_extension_in_small_letters();
    void row_buttons_are_in_their_order();
    void row_buttons_know_their_file();
    void commands_on_all_files_need_a_file();

    void an_unchanged_directory_touches_no_row();
    void an_added_file_makes_one_row();
    void a_removed_file_takes_one_row();
    void a_renamed_file_changes_one_row();
    void a_touched_file_moves_to_the_top();
    void touching_a_file_leaves_later_rows_alone();
};

void TstPanelConstruction::init()
{
    WarningGuard::clear();
    QVERIFY(clearProjectFilesDirectory());
}

void TstPanelConstruction::slots_are_in_their_fixed_order()
{
    const QMetaObject &meta = EngineerDocOperWidget::staticMetaObject;
    QCOMPARE(meta.className(), "ProjectFileCfg::Internal::EngineerDocOperWidget");
    QVERIFY(meta.inherits(&Corvel::Widgets::ICenterWidget::staticMetaObject));
    QByteArrayList own;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        QCOMPARE(meta.method(i).methodType(), QMetaMethod::Slot);
        own.append(meta.method(i).methodSignature());
    }
    QCOMPARE(own, QByteArrayList({"slot_backupFinished()", "slot_loadFinished()", "slot_saveProject()",
                                  "slot_importProject()", "slot_deleteAllProject()", "slot_saveasProject()",
                                  "slot_applyPoject()", "slot_applyOtherProject()", "slot_changeDevice(QString)",
                                  "slot_singleFileSaveas()", "slot_editProjectInfo()", "slot_deleteProject()",
                                  "slot_operatorChanged(QString)", "slot_backupOperatorChanged(QString)",
                                  "slot_cancelOperator()", "slot_projectFilesChanged()"}));
}

void TstPanelConstruction::the_host_knows_the_panel_by_its_id()
{
    const TestSite site;
    QWidget parent;
    const Panel panel(&parent);
    QCOMPARE(panel->id().toString(), QStringLiteral("ProjectFileCfg.Central"));
    QCOMPARE(panel->parentWidget(), &parent);
}

void TstPanelConstruction::panel_is_marked_for_the_style_sheet()
{
    const TestSite site;
    const Panel panel;
    QCOMPARE(panel->property("EngineerFile"), QVariant(true));
    QCOMPARE(panel->styleSheet(), QString());
}

void TstPanelConstruction::layout_rows_are_in_their_order()
{
    const TestSite site;
    const Panel panel;
    const auto *outer = qobject_cast<QVBoxLayout *>(panel->layout());
    QVERIFY(outer);
    QCOMPARE(outer->spacing(), 16);
    QCOMPARE(outer->count(), 9);
    const auto height = [&panel](int index) { return panel.item(index)->spacerItem()->sizeHint().height(); };
    QCOMPARE(height(0), 19);
    QCOMPARE(height(2), 8);
    QCOMPARE(height(6), 10);
    QCOMPARE(height(8), 10);

    const auto width = [&panel](int row, int index) {
        return panel.row(row)->itemAt(index)->spacerItem()->sizeHint().width();
    };
    const auto stretches = [&panel](int row, int index) {
        return bool(panel.row(row)->itemAt(index)->spacerItem()->expandingDirections() & Qt::Horizontal);
    };
    for (const int row : {1, 3, 4, 7})
        QCOMPARE(panel.row(row)->spacing(), 16);

    QCOMPARE(panel.row(1)->count(), 4);
    QCOMPARE(width(1, 0), 25);
    QVERIFY(panel.deviceLabel());
    QVERIFY(panel.deviceCombo());
    QVERIFY(stretches(1, 3));
    QCOMPARE(panel.row(1)->stretch(3), 1);

    QCOMPARE(panel.row(3)->count(), 6);
    QCOMPARE(width(3, 0), 25);
    QVERIFY(panel.saveProject());
    QVERIFY(stretches(3, 2));
    QCOMPARE(panel.row(3)->stretch(2), 0);
    QVERIFY(panel.allSaveAs());
    QVERIFY(panel.allDelete());
    QCOMPARE(width(3, 5), 24);

    QCOMPARE(panel.row(4)->count(), 3);
    QCOMPARE(width(4, 0), 24);
    QVERIFY(panel.table());
    QCOMPARE(width(4, 2), 10);

    QVERIFY(panel.separator());

    QCOMPARE(panel.row(7)->count(), 4);
    QVERIFY(stretches(7, 0));
    QVERIFY(panel.importProject());
    QVERIFY(panel.applyOthers());
    QCOMPARE(width(7, 3), 24);
}

void TstPanelConstruction::device_selector_has_a_fixed_size()
{
    const TestSite site;
    const Panel panel;
    QCOMPARE(panel.deviceCombo()->minimumSize(), QSize(300, 36));
    QCOMPARE(panel.deviceCombo()->maximumSize(), QSize(300, 36));
    QCOMPARE(panel.deviceCombo()->sizePolicy(), QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Minimum));
    QVERIFY(qobject_cast<QStyledItemDelegate *>(panel.deviceCombo()->itemDelegate()));
    QCOMPARE(panel.deviceCombo()->itemDelegate()->parent(), panel.widget.get());
}

void TstPanelConstruction::table_is_read_only()
{
    const TestSite site;
    Panel panel;
    const QTableWidget *table = panel.table();
    QCOMPARE(table->sizeAdjustPolicy(), QAbstractScrollArea::AdjustToContents);
    QVERIFY(table->verticalHeader()->isHidden());
    QCOMPARE(table->frameShape(), QFrame::NoFrame);
    QCOMPARE(table->editTriggers(), QAbstractItemView::NoEditTriggers);
    QCOMPARE(table->selectionMode(), QAbstractItemView::NoSelection);
    QCOMPARE(table->focusPolicy(), Qt::NoFocus);
    QCOMPARE(table->columnCount(), 3);
    const QHeaderView *header = table->horizontalHeader();
    QCOMPARE(header->sectionResizeMode(0), QHeaderView::Fixed);
    QCOMPARE(header->sectionResizeMode(1), QHeaderView::Stretch);
    QCOMPARE(header->sectionResizeMode(2), QHeaderView::Fixed);
    QCOMPARE(table->columnWidth(0), 340);
    QCOMPARE(table->columnWidth(2), 340);
    QCOMPARE(table->horizontalScrollMode(), QAbstractItemView::ScrollPerPixel);
    QCOMPARE(table->verticalHeader()->defaultSectionSize(), 48);

    QVERIFY(writePackage(projectFile(QStringLiteral("Project1")), QString()));
    panel.rescan();
    QCOMPARE(table->rowHeight(0), 48);

    // The middle column takes the room that the others leave.
    panel->resize(1200, 600);
    panel->show();
    QCOMPARE(table->columnWidth(0), 340);
    QCOMPARE(table->columnWidth(1), table->viewport()->width() - 680);
    QCOMPARE(table->columnWidth(2), 340);
}

void TstPanelConstruction::separator_is_a_styled_line()
{
    const TestSite site;
    const Panel panel;
    const QFrame *separator = panel.separator();
    QCOMPARE(separator->parentWidget(), panel.widget.get());
    QCOMPARE(separator->frameShape(), QFrame::HLine);
    QCOMPARE(separator->frameShadow(), QFrame::Plain);
    QCOMPARE(separator->minimumHeight(), 1);
    QCOMPARE(separator->maximumHeight(), 1);
    QCOMPARE(separator->styleSheet(), QStringLiteral("border-top: solid ; background-color:rgb(81, 84, 91)"));
}

void TstPanelConstruction::texts_are_those_of_the_panel()
{
    const TestSite site;
    const Panel panel;
    QCOMPARE(panel.deviceLabel()->text(), QStringLiteral("Device"));
    QCOMPARE(panel.saveProject()->text(), QStringLiteral("Save Project"));
    QCOMPARE(panel.importProject()->text(), QStringLiteral("Import Project"));
    QCOMPARE(panel.applyOthers()->text(), QStringLiteral("Apply Others"));
    QCOMPARE(panel.allSaveAs()->text(), QStringLiteral("ALL Save as"));
    QCOMPARE(panel.allDelete()->text(), QStringLiteral("All Delete"));
    QCOMPARE(headerTexts(panel),
             QStringList({QStringLiteral("Project file"), QStringLiteral("Comment"), QStringLiteral("Operations")}));
}

void TstPanelConstruction::command_buttons_share_one_width()
{
    const TestSite site;
    const QString longest = QStringLiteral("A text that is far wider than one hundred pixels");
    const OneText text(longest);
    const Panel panel;
    const int width = textWidth(panel.widget.get(), longest) + 25;
    QVERIFY(width > 125);
    for (const QPushButton *button : commandButtons(panel)) {
        QCOMPARE(button->minimumSize(), QSize(width, 30));
        QCOMPARE(button->maximumSize(), QSize(width, 30));
        QCOMPARE(button->sizePolicy(), QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed));
    }
}

void TstPanelConstruction::short_texts_give_buttons_of_125_by_30()
{
    const TestSite site;
    const Panel panel;
    const OneText text(QStringLiteral("I"));
    QCoreApplication::processEvents();
    QCOMPARE(panel.saveProject()->text(), QStringLiteral("I"));
    for (const QPushButton *button : commandButtons(panel)) {
        QCOMPARE(button->minimumSize(), QSize(125, 30));
        QCOMPARE(button->maximumSize(), QSize(125, 30));
    }
}

void TstPanelConstruction::label_is_15_wider_than_its_text()
{
    const TestSite site;
    const Panel panel;
    const int width = textWidth(panel.widget.get(), QStringLiteral("Device")) + 15;
    QCOMPARE(panel.deviceLabel()->minimumWidth(), width);
    QCOMPARE(panel.deviceLabel()->maximumWidth(), width);
}

void TstPanelConstruction::texts_follow_the_language()
{
    const TestSite site;
    const Panel panel;
    {
        const TranslatedTexts chinese(QStringLiteral("zh_CN"));
        QVERIFY(chinese.areFound());
        QCoreApplication::processEvents();
        QCOMPARE(panel.deviceLabel()->text(), QStringLiteral("设备"));
        QCOMPARE(panel.saveProject()->text(), QStringLiteral("保存项目"));
        QCOMPARE(panel.importProject()->text(), QStringLiteral("导入项目"));
        QCOMPARE(panel.applyOthers()->text(), QStringLiteral("应用外部项目"));
        QCOMPARE(panel.allSaveAs()->text(), QStringLiteral("全部另存为"));
        QCOMPARE(panel.allDelete()->text(), QStringLiteral("全部删除"));
        QCOMPARE(headerTexts(panel),
                 QStringList({QStringLiteral("项目文件"), QStringLiteral("备注"), QStringLiteral("操作")}));
        QCOMPARE(panel.deviceLabel()->maximumWidth(), textWidth(panel.widget.get(), QStringLiteral("设备")) + 15);
    }
    QCoreApplication::processEvents();
    QCOMPARE(panel.saveProject()->text(), QStringLiteral("Save Project"));
}

void TstPanelConstruction::rows_follow_the_language_after_a_scan()
{
    const TestSite site;
    QVERIFY(writePackage(projectFile(QStringLiteral("Project1")), QString()));
    const Panel panel;
    settle();
    const QStringList english{QStringLiteral("Edit"), QStringLiteral("Apply"), QStringLiteral("Save as"),
                              QStringLiteral("Delete")};
    QCOMPARE(texts(panel.rowButtons(0)), english);

    const TranslatedTexts chinese(QStringLiteral("zh_CN"));
    {
        const HeldThreadPool held;
        QCoreApplication::processEvents();
        QCOMPARE(panel.saveProject()->text(), QStringLiteral("保存项目"));
        QCOMPARE(texts(panel.rowButtons(0)), english);
    }
    settle();
    QCOMPARE(texts(panel.rowButtons(0)), QStringList({QStringLiteral("编辑"), QStringLiteral("应用"),
                                                      QStringLiteral("另存为"), QStringLiteral("删除")}));
}

// No other test of this program begins an operation that can be cancelled.
void TstPanelConstruction::the_host_names_its_cancel_button_before_operations()
{
    auto *waiting = Corvel::Widgets::WaitingDialog::instance();
    waiting->setButtonText(QStringLiteral("Stop"));
    const TestSite site;
    const Panel panel;
    {
        const OneText pseudo(QStringLiteral("x"));
        QCoreApplication::processEvents();
    }
    QCoreApplication::processEvents();
    QCOMPARE(waiting->findChild<QPushButton *>(QStringLiteral("WaitingDialogCancel"))->text(), QStringLiteral("Stop"));
}

void TstPanelConstruction::command_buttons_run_their_operations()
{
    const TestSite site;
    QVERIFY(writePackage(projectFile(QStringLiteral("Project1")), QString()));
    const Panel panel;
    panel->show();
    settle();

    AnswerBook book;
    book.expectDialog(QStringLiteral("EngineerPropertySettingWidget"),
                      [](QDialog *dialog) { click(dialog, QStringLiteral("Cancel")); });
    QVERIFY(click(panel.saveProject()));

    book.expectFileDialog(QStringLiteral("Project file"), {});
    QVERIFY(click(panel.importProject()));
    QCOMPARE(book.seen().last().fileMode, QFileDialog::ExistingFiles);

    book.expectFileDialog(QStringLiteral("Project file"), {});
    QVERIFY(click(panel.applyOthers()));
    QCOMPARE(book.seen().last().fileMode, QFileDialog::ExistingFile);

    book.expectFileDialog(QStringLiteral("choose Des Directory"), {});
    QVERIFY(click(panel.allSaveAs()));

    book.expectQuestion(QStringLiteral("Remind"), QStringLiteral("Confirm to delete all project file?"),
                        QMessageBox::No);
    QVERIFY(click(panel.allDelete()));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
}

void TstPanelConstruction::row_buttons_run_their_operations()
{
    const TestSite site;
    QVERIFY(writePackage(projectFile(QStringLiteral("Project1")), QString()));
    const Panel panel;
    panel->show();
    settle();
    const QList<QToolButton *> buttons = panel.rowButtons(0);

    AnswerBook book;
    book.expectDialog(QStringLiteral("EngineerPropertySettingWidget"),
                      [](QDialog *dialog) { click(dialog, QStringLiteral("Cancel")); });
    QVERIFY(click(buttons.at(0)));
    book.expectQuestion(QStringLiteral("Remind"),
                        QStringLiteral("Whether the current configuration needs to be backed up before the project "
                                       "file is imported?"),
                        QMessageBox::Cancel);
    QVERIFY(click(buttons.at(1)));
    book.expectFileDialog(QStringLiteral("choose Des Directory"), {});
    QVERIFY(click(buttons.at(2)));
    book.expectQuestion(QStringLiteral("Remind"), QStringLiteral("Confirm to delete the selected project file?"),
                        QMessageBox::No);
    QVERIFY(click(buttons.at(3)));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));
}

void TstPanelConstruction::after_many_refreshes_a_click_acts_once()
{
    const TestSite site;
    QVERIFY(writePackage(projectFile(QStringLiteral("Project1")), QString()));
    const Panel panel;
    panel->show();
    for (int i = 0; i < 3; ++i) {
        panel->retranslateUi();
        panel->hide();
        panel->show();
        settle();
    }

    AnswerBook book;
    book.expectQuestion(QStringLiteral("Remind"), QStringLiteral("Confirm to delete all project file?"),
                        QMessageBox::No);
    QVERIFY(click(panel.allDelete()));
    book.expectQuestion(QStringLiteral("Remind"), QStringLiteral("Confirm to delete the selected project file?"),
                        QMessageBox::No);
    QVERIFY(click(panel.rowButtons(0).at(3)));
    QVERIFY2(book.isSatisfied(), qPrintable(book.report()));

    // The selector warns about wrong marks once per change, in a new panel too.
    const Panel fresh;
    for (const Panel *each : {&panel, &fresh}) {
        const ExpectMessage complaint(QtCriticalMsg, QStringLiteral("device mark list count error."), 1);
        each->deviceCombo()->setItemData(1, QStringList(QStringLiteral("alone")), Qt::UserRole + 1);
        each->deviceCombo()->setCurrentIndex(1);
    }
}

void TstPanelConstruction::icons_come_with_the_library_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"icon_project_normal", "icon_setting_project_edit", "icon_setting_project_apply",
                             "icon_setting_project_save", "icon_setting_project_del"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void TstPanelConstruction::icons_come_with_the_library()
{
    QFETCH(QString, name);
    const QString path = QStringLiteral(":resource/images/%1.png").arg(name);
    const QImage image(path);
    QVERIFY(!image.isNull());
    const QImage twice(QStringLiteral(":resource/images/%1@2x.png").arg(name));
    QCOMPARE(twice.size(), image.size() * 2);
    QVERIFY2(image.convertToFormat(QImage::Format_ARGB32) != QImage(image.size(), QImage::Format_ARGB32),
             "an icon shows something");
    QVERIFY(!QIcon(path).pixmap(16).isNull());
}

void TstPanelConstruction::row_shows_file_and_comment()
{
    const TestSite site;
    QVERIFY(writePackage(projectFile(QStringLiteral("Project3")), QStringLiteral("before the <b>show</b>")));
    const Panel panel;
    settle();
    QCOMPARE(panel.table()->rowCount(), 1);
    const QTableWidgetItem *file = panel.table()->item(0, 0);
    QCOMPARE(file->text(), QStringLiteral("Project3"));
    const QImage icon = file->icon().pixmap(file->icon().availableSizes().value(0)).toImage();
    QCOMPARE(icon, QIcon(QStringLiteral(":resource/images/icon_project_normal.png")).pixmap(icon.size()).toImage());
    QVERIFY(!icon.isNull());
    QCOMPARE(panel.table()->item(0, 1)->text(), QStringLiteral("before the <b>show</b>"));
}

void TstPanelConstruction::file_names_lose_every_extension_in_small_letters_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("shown");
    QTest::newRow("once") << "Project3.corvelpro"
                          << "Project3";
    QTest::newRow("twice") << "a.corvelpro.corvelpro"
                           << "a";
    QTest::newRow("in the middle") << "a.corvelpro.b.corvelpro"
                                   << "a.b";
    QTest::newRow("capitals") << "Show.CORVELPRO"
                              << "Show.CORVELPRO";
    QTest::newRow("mixed") << "Show.CorvelPro"
                           << "Show.CorvelPro";
    QTest::newRow("other dots") << "v1.2 final.corvelpro"
                                << "v1.2 final";
    QTest::newRow("unicode") << "开幕式 ü.corvelpro"
                             << "开幕式 ü";
}

void TstPanelConstruction::file_names_lose_every_extension_in_small_letters()
{
    QFETCH(QString, file);
    QFETCH(QString, shown);
    const TestSite site;
    QVERIFY(writePackage(projectFilesPath() + file, QString()));
    const Panel panel;
    settle();
    QCOMPARE(panel.names(), QStringList(shown));
}

void TstPanelConstruction::row_buttons_are_in_their_order()
{
    const TestSite site;
    QVERIFY(writePackage(projectFile(QStringLiteral("Project1")), QString()));
    const Panel panel;
    settle();
    const auto *layout = qobject_cast<QHBoxLayout *>(panel.table()->cellWidget(0, 2)->layout());
    QVERIFY(layout);
    QCOMPARE(layout->count(), 7);

    const struct
    {
        int index;
        QString text;
        const char *property;
        const char *icon;
    } buttons[] = {
        {0, QStringLiteral("Edit"), "EngineerDocOperBlue", ":resource/images/icon_setting_project_edit.png"},
        {2, QStringLiteral("Apply"), "EngineerDocOperBlue", ":resource/images/icon_setting_project_apply.png"},
        {4, QStringLiteral("Save as"), "EngineerDocOperBlue", ":resource/images/icon_setting_project_save.png"},
        {6, QStringLiteral("Delete"), "EngineerDocOperRed", ":resource/images/icon_setting_project_del.png"}};
    for (const auto &expected : buttons) {
        const auto *button = qobject_cast<QToolButton *>(layout->itemAt(expected.index)->widget());
        QVERIFY(button);
        QCOMPARE(button->text(), expected.text);
        QCOMPARE(button->toolButtonStyle(), Qt::ToolButtonTextBesideIcon);
        QCOMPARE(button->dynamicPropertyNames(), QByteArrayList({expected.property, "FilePath"}));
        QCOMPARE(button->property(expected.property), QVariant(true));
        const QPixmap icon(QString::fromLatin1(expected.icon));
        QVERIFY(!icon.isNull());
        QCOMPARE(button->icon().pixmap(icon.size()).toImage(), icon.toImage());
    }

    const QPair<int, const char *> lines[] = {
        {1, "EngineerFunctionLine"}, {3, "EngineerFunctionLine"}, {5, "DeviceFunctionLine"}};
    for (const auto &expected : lines) {
        const auto *line = qobject_cast<QFrame *>(layout->itemAt(expected.first)->widget());
        QVERIFY(line);
        QCOMPARE(line->dynamicPropertyNames(), QByteArrayList{expected.second});
        QCOMPARE(line->property(expected.second), QVariant(true));
        QCOMPARE(line->minimumWidth(), 1);
        QCOMPARE(line->maximumWidth(), 1);
        QCOMPARE(line->frameShape(), QFrame::VLine);
    }
}

void TstPanelConstruction::row_buttons_know_their_file()
{
    const TestSite site;
    const QStringList names{QStringLiteral("New"), QStringLiteral("Older"), QStringLiteral("Oldest")};
    for (int i = 0; i < names.count(); ++i)
        QVERIFY(writePackage(projectFile(names.at(i)), QString(), i));
    const Panel panel;
    settle();
    QCOMPARE(panel.names(), names);
    for (int i = 0; i < names.count(); ++i) {
        QCOMPARE(panel.rowButtons(i).count(), 4);
        for (const QToolButton *button : panel.rowButtons(i))
            QCOMPARE(button->property("FilePath").toString(), projectFile(names.at(i)));
    }
}

void TstPanelConstruction::commands_on_all_files_need_a_file()
{
    const TestSite site;
    const Panel panel;
    settle();
    QCOMPARE(panel.table()->rowCount(), 0);
    QVERIFY(!panel.allDelete()->isEnabled());
    QVERIFY(!panel.allSaveAs()->isEnabled());
    for (const QPushButton *button : {panel.saveProject(), panel.importProject(), panel.applyOthers()})
        QVERIFY(button->isEnabled());

    QVERIFY(writePackage(projectFile(QStringLiteral("Project1")), QString()));
    panel.rescan();
    QVERIFY(panel.allDelete()->isEnabled());
    QVERIFY(panel.allSaveAs()->isEnabled());

    QVERIFY(QFile::remove(projectFile(QStringLiteral("Project1"))));
    panel.rescan();
    QCOMPARE(panel.table()->rowCount(), 0);
    QVERIFY(!panel.allDelete()->isEnabled());
    QVERIFY(!panel.allSaveAs()->isEnabled());
}

void TstPanelConstruction::an_unchanged_directory_touches_no_row()
{
    const ListedFiles listed;
    QVERIFY(listed.isReady());
    const SignalRecorder<> inserted(listed.model(), &QAbstractItemModel::rowsInserted);
    const SignalRecorder<> removed(listed.model(), &QAbstractItemModel::rowsRemoved);
    const SignalRecorder<> changed(listed.model(), &QAbstractItemModel::dataChanged);
    listed.panel->rescan();
    QCoreApplication::processEvents(); // deliver the table's pending events
    QCOMPARE(listed.untouched(), ListedFiles::all());
    QCOMPARE(inserted.count(), 0);
    QCOMPARE(removed.count(), 0);
    QCOMPARE(changed.count(), 0);
}

void TstPanelConstruction::an_added_file_makes_one_row()
{
    const ListedFiles listed;
    QVERIFY(listed.isReady());
    const SignalRecorder<> inserted(listed.model(), &QAbstractItemModel::rowsInserted);
    QVERIFY(writePackage(projectFile(QStringLiteral("Between")), QStringLiteral("added"), 15));
    listed.panel->rescan();
    QCOMPARE(listed.panel->names(), QStringList({QStringLiteral("New"), QStringLiteral("Between"),
                                                 QStringLiteral("Middle"), QStringLiteral("Old")}));
    QCOMPARE(listed.panel->comments().at(1), QStringLiteral("added"));
    QCOMPARE(listed.untouched(), ListedFiles::all());
    QTRY_COMPARE(inserted.count(), 1);
}

void TstPanelConstruction::a_removed_file_takes_one_row()
{
    const ListedFiles listed;
    QVERIFY(listed.isReady());
    const SignalRecorder<> inserted(listed.model(), &QAbstractItemModel::rowsInserted);
    QVERIFY(QFile::remove(projectFile(QStringLiteral("Middle"))));
    listed.panel->rescan();
    QCOMPARE(listed.panel->names(), QStringList({QStringLiteral("New"), QStringLiteral("Old")}));
    QCOMPARE(listed.untouched(), QStringList({QStringLiteral("New"), QStringLiteral("Old")}));
    QCoreApplication::processEvents();
    QCOMPARE(inserted.count(), 0);
}

void TstPanelConstruction::a_renamed_file_changes_one_row()
{
    const ListedFiles listed;
    QVERIFY(listed.isReady());
    QVERIFY(QFile::rename(projectFile(QStringLiteral("Middle")), projectFile(QStringLiteral("Renamed"))));
    listed.panel->rescan();
    QCOMPARE(listed.panel->names(),
             QStringList({QStringLiteral("New"), QStringLiteral("Renamed"), QStringLiteral("Old")}));
    for (const QToolButton *button : listed.panel->rowButtons(1))
        QCOMPARE(button->property("FilePath").toString(), projectFile(QStringLiteral("Renamed")));
    QCOMPARE(listed.untouched(), QStringList({QStringLiteral("New"), QStringLiteral("Old")}));
}

void TstPanelConstruction::a_touched_file_moves_to_the_top()
{
    const ListedFiles listed;
    QVERIFY(listed.isReady());
    QVERIFY(makeOld(projectFile(QStringLiteral("Old")), 0));
    listed.panel->rescan();
    QCOMPARE(listed.panel->names(),
             QStringList({QStringLiteral("Old"), QStringLiteral("New"), QStringLiteral("Middle")}));
    for (const QToolButton *button : listed.panel->rowButtons(0))
        QCOMPARE(button->property("FilePath").toString(), projectFile(QStringLiteral("Old")));
    QCOMPARE(listed.untouched(), QStringList({QStringLiteral("New"), QStringLiteral("Middle")}));
}

void TstPanelConstruction::touching_a_file_leaves_later_rows_alone()
{
    const ListedFiles listed;
    QVERIFY(listed.isReady());
    QVERIFY(makeOld(projectFile(QStringLiteral("Middle")), 0));
    listed.panel->rescan();
    QCOMPARE(listed.panel->names(),
             QStringList({QStringLiteral("Middle"), QStringLiteral("New"), QStringLiteral("Old")}));
    QCOMPARE(listed.untouched(), QStringList({QStringLiteral("New"), QStringLiteral("Old")}));
}

TEST_MAIN(TstPanelConstruction)
#include "tst_panelconstruction.moc"
