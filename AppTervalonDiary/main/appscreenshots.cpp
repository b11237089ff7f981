#include "AppTervalonDiary/main/appscreenshots.h"
#include "AppTervalonDiary/diary/appdiaryinfo.h"
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "LibCore/error/zberror.h"
#include "LibDatabase/db/zbdatabase.h"
#include "LibDatabase/db/zblockfile.h"
#include "LibDatabase/qt/zbdbmanagerqt.h"
#include "LibDatabase/qt/zbfirstrunqt.h"
#include "LibGui/qt/zbbuttonboxqt.h"
#include "LibGui/qt/zbdialogqt.h"
#include "LibGui/qt/zbformitemqt.h"
#include "LibGui/qt/zbformqt.h"
#include "LibGui/qt/zbgraphqt.h"
#include "LibGui/qt/zbmessageboxqt.h"
#include "LibGui/qt/zbnotifybarqt.h"
#include "LibGui/qt/zbnotifydialogqt.h"
#include "LibGui/qt/zbnotifylistqt.h"
#include "LibGui/qt/zbnotifysettingsqt.h"
#include "LibGui/qt/zbsettingsformqt.h"
#include "LibGui/qt/zbsettingsqt.h"
#include "LibGui/qt/zbtreewidgetqt.h"
#include "LibGui/qt/zbwidgetcontainerqt.h"
#include "LibGui/qt/zbwidgetqt.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPixmap>
#include <QPushButton>
#include <QTabWidget>
#include <QSysInfo>
#include <QTemporaryDir>
#include <QSystemTrayIcon>
#include <QThread>
#include <QVBoxLayout>

#include <map>

namespace Tervalon {

namespace {

// Lets the window system map and paint the window before it is grabbed.
void settle(int ms = 150)
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < ms) {
        QApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(5);
    }
}

const char* type_name(int type)
{
    switch (type) {
    case 'T': return "Task";
    case 'A': return "Appointment";
    case 'J': return "Journal";
    case 'P': return "Person";
    case 'D': return "Address";
    case 'L': return "Place";
    case 'O': return "Object";
    default: return "Entry";
    }
}

void add_entry(ZBTreeWidgetQt& tree, const DiaryEntry& entry, int parentId)
{
    const ZBDate& due = entry.get_due().calc;
    tree.add(entry.get_id(),
             {QString::fromStdString(entry.get_summary()), type_name(entry.get_entrytype()),
              due.is_ok() ? QString::fromStdString(due.to_string("%a %d %b %Y")) : QString(),
              QString::number(entry.get_id())},
             parentId);
    for (const DiaryEntry* child : entry.get_children())
        add_entry(tree, *child, entry.get_id());
}

// A page that shows a small form inside the container frame.
class NotePage : public ZBWidgetQt {
public:
    NotePage()
    {
        setObjectName("notePage");
        QVBoxLayout* layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        m_form = new ZBFormQt(this);
        ZBFormItemQt* title = new ZBFormItemQt;
        title->set_text_type("noteTitle", "Title", "Call the plumber");
        ZBFormItemQt* text = new ZBFormItemQt;
        text->set_text_type("noteText", "Note", "Ask about the kitchen sink and the outside tap.", true);
        m_form->add_item(title);
        m_form->add_item(text);
        layout->addWidget(m_form);
    }
    int update_display() override { return m_form->update_display(); }

private:
    ZBFormQt* m_form;
};

// The newest question box the window shows.
ZBMessageBoxQt* newest_box(QWidget& window)
{
    settle(50);
    ZBMessageBoxQt* found = nullptr;
    for (ZBMessageBoxQt* box : window.findChildren<ZBMessageBoxQt*>())
        if (box->isVisible())
            found = box;
    return found;
}

int answer(ZBMessageBoxQt* box, const char* caption)
{
    QPushButton* button = box ? box->get_button(caption) : nullptr;
    if (!button)
        return zberror(ZBErrC_Error, ZBLOC, "The tour found no \"%s\" question to answer.", caption);
    button->click();
    settle(50);
    return ZBErrC_ok;
}

} // namespace

AppScreenshots::AppScreenshots(const std::string& folder, const std::string& file) : m_folder(folder), m_file(file) {}

AppScreenshots::~AppScreenshots() = default;

int AppScreenshots::run()
{
    if (!QDir().mkpath(QString::fromStdString(m_folder)))
        return zbwarnuser(ZBErrC_FileCreate, ZBLOC, "Could not create the folder %s", m_folder.c_str());
    int result = m_file.empty() ? make_sample() : open_diary();
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    for (int (AppScreenshots::*step)() : {&AppScreenshots::show_form, &AppScreenshots::show_container,
                                          &AppScreenshots::show_settings, &AppScreenshots::show_tree,
                                          &AppScreenshots::show_message, &AppScreenshots::show_graph,
                                          &AppScreenshots::show_load, &AppScreenshots::show_notify}) {
        result = (this->*step)();
        if (iszbwarn(result))
            return zbpass(ZBLOC);
    }
    return ZBErrC_ok;
}

int AppScreenshots::open_diary()
{
    m_db.reset(AppDiaryInfo::make_database());
    // Read only: the tour never locks or writes the user's file.
    int result = m_db->read(m_file);
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    m_diary = dynamic_cast<Diary*>(m_db.get());
    if (!m_diary)
        return zberror(ZBErrC_DynamicCast, ZBLOC, "The file %s does not hold a diary.", m_file.c_str());
    m_diary->recalculate(ZBDatabase::E_RecalcQuick);
    return ZBErrC_ok;
}

int AppScreenshots::make_sample()
{
    m_db.reset(AppDiaryInfo::make_database());
    int result = m_db->load("", false);
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    m_diary = dynamic_cast<Diary*>(m_db.get());
    if (!m_diary)
        return zberror(ZBErrC_DynamicCast, ZBLOC, "The sample database is not a diary.");
    const std::pair<const char*, std::vector<const char*>> projects[] = {
        {"Home renovation", {"Measure the kitchen", "Choose cupboards", "Book the plumber", "Paint the hall"}},
        {"Club website", {"Collect ideas from members", "Sketch the home page", "Pick colours"}},
        {"Garden", {"Clear the borders", "Plant bulbs", "Fix the fence"}},
    };
    for (const auto& project : projects) {
        DiaryEntry* parent = nullptr;
        if (iszbwarn(m_diary->create_entry(nullptr, 'O', project.first, &parent)))
            return zbpass(ZBLOC);
        for (const char* title : project.second) {
            DiaryEntry* task = nullptr;
            if (iszbwarn(m_diary->create_entry(parent, 'T', title, &task)))
                return zbpass(ZBLOC);
            // Dates relative to today, so the sample always looks current.
            ZBDate due;
            if (due.from_string("+" + std::to_string(2 + 3 * m_diary->get_nentries() + std::string(title).size() % 9) +
                                " days"))
                task->edit_due().set_orig(due);
        }
    }
    m_diary->recalculate(ZBDatabase::E_RecalcQuick);
    return ZBErrC_ok;
}

int AppScreenshots::save(QWidget* window, const std::string& name)
{
    window->show();
    window->raise();
    window->activateWindow();
    settle();
    const QString file = QDir(QString::fromStdString(m_folder))
                             .filePath((name.empty() ? window->objectName() : QString::fromStdString(name)) + ".png");
    if (!window->grab().save(file, "PNG"))
        return zbwarnuser(ZBErrC_FileCreate, ZBLOC, "Could not create the file %s", file.toStdString().c_str());
    ++m_saved;
    return ZBErrC_ok;
}

int AppScreenshots::show_form()
{
    ZBDialogQt dialog;
    dialog.setObjectName("formDemo");
    dialog.setWindowTitle("Entry Details");
    dialog.set_restore_geom(false);
    QVBoxLayout* layout = new QVBoxLayout(&dialog);
    ZBFormQt* form = new ZBFormQt;
    auto add = [form](std::function<void(ZBFormItemQt&)> setup) {
        ZBFormItemQt* item = new ZBFormItemQt;
        setup(*item);
        form->add_item(item);
    };
    add([](ZBFormItemQt& i) { i.set_label_type("created", "Created", "Mon 23 Nov 2026 09:12"); });
    add([](ZBFormItemQt& i) {
        i.set_text_type("title", "Title", "Book the plumber", false, {"Book the electrician", "Book the plumber"});
    });
    add([](ZBFormItemQt& i) { i.set_bool_type("done", "Completed", false); });
    add([](ZBFormItemQt& i) { i.set_int_type("priority", "Priority", 70, 0, 100); });
    add([](ZBFormItemQt& i) { i.set_float_type("cost", "Cost", 85.5, 0, 100000); });
    add([](ZBFormItemQt& i) { i.set_date_type("due", "Due", ZBDate(2026, 11, 27, 17, 0, 0, 0, ZBDate::C_GMT)); });
    add([](ZBFormItemQt& i) { i.set_duration_type("duration", "Duration", ZBDuration(5400)); });
    add([](ZBFormItemQt& i) { i.set_location_type("place", "Place", ZBGeoPoint(51.50135, -0.14189, 15)); });
    add([](ZBFormItemQt& i) { i.set_path_type("attachment", "Attachment", QDir::homePath() + "/quote.pdf"); });
    add([](ZBFormItemQt& i) {
        i.set_choice_type("resource", "Assigned to", {{-3, "Unassigned"}, {1, "Alex"}, {2, "Sam"}}, 1);
    });
    form->update_display();
    layout->addWidget(form);
    QDialogButtonBox* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    layout->addWidget(buttons);
    dialog.resize(620, dialog.sizeHint().height());
    form->select_first_field();
    return save(&dialog);
}

int AppScreenshots::show_container()
{
    NotePage* page = new NotePage;
    ZBWidgetContainerQt container("Note", page);
    container.set_restore_geom(false);
    container.update_display();
    container.resize(460, 260);
    return save(&container);
}

int AppScreenshots::show_settings()
{
    ZBSettingsQt settings;
    settings.set_restore_geom(false);
    settings.add_param("AutoSave", "Save automatically when idle", ZBFormItemQt::E_Bool, "1");
    settings.add_param("Backups", "Backups to keep", ZBFormItemQt::E_Int, "5", 0, 100);
    settings.add_param("PlanDays", "Days to plan ahead", ZBFormItemQt::E_Int, "28", 1, 3650);
    settings.add_param("RecalcIdle", "Seconds idle before planning", ZBFormItemQt::E_Int, "15", 1, 3600);
    settings.add_param("UseSystemTray", "Show in the system tray", ZBFormItemQt::E_Bool, "0");
    settings.add_param("Hostname", "Name of this computer", ZBFormItemQt::E_Text, QSysInfo::machineHostName().toStdString());
    settings.add_notify({{"NotifyLate", "Late tasks"}, {"NotifyClash", "Clashing appointments"},
                         {"NotifyDue", "Tasks due today"}},
                        {{0, "Off"}, {1, "In the list"}, {2, "Pop up"}}, 1);
    settings.update_display();
    QTabWidget* tabs = settings.get_tabs();
    for (int i = 0; i < tabs->count(); ++i) {
        tabs->setCurrentIndex(i);
        int result = save(&settings, i == 0 ? std::string() : tabs->widget(i)->objectName().toStdString());
        if (iszbwarn(result))
            return zbpass(ZBLOC);
    }
    return ZBErrC_ok;
}

int AppScreenshots::show_tree()
{
    ZBDialogQt dialog;
    dialog.setObjectName("entryTreeDialog");
    dialog.setWindowTitle("Entries");
    dialog.set_restore_geom(false);
    QVBoxLayout* layout = new QVBoxLayout(&dialog);
    ZBButtonBoxQt* buttons = new ZBButtonBoxQt;
    ZBTreeWidgetQt* tree = new ZBTreeWidgetQt;
    tree->setObjectName("entryTree");
    tree->setColumnCount(4);
    tree->setHeaderLabels({"Title", "Type", "Due", "Id"});
    tree->multiselect_buttons(buttons);
    layout->addWidget(buttons);
    layout->addWidget(tree, 1);
    tree->start_refill();
    for (int i = 0; i < m_diary->get_nentries(); ++i)
        add_entry(*tree, *m_diary->get_entry_index(i), -1);
    tree->complete_refill();
    tree->expandAll();
    tree->resize_columns();
    if (tree->topLevelItemCount() > 0)
        tree->select_id(tree->get_item_id(tree->topLevelItem(0)));
    dialog.resize(640, 460);
    int result = save(&dialog);
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    // The same tree picking several entries.
    tree->set_mode(ZBTreeWidgetQt::E_ModeMultiple);
    tree->clear_selection();
    std::vector<QTreeWidgetItem*> items = tree->get_all_items();
    for (size_t i = 1; i < items.size(); i += 3)
        items[i]->setSelected(true);
    tree->resize_columns();
    return save(&dialog, "entryTreeMultiple");
}

int AppScreenshots::show_message()
{
    ZBMessageBoxQt* box = ZBMessageBoxQt::start(
        ZBIdList(), "saveFailed", "Save Failed",
        "The diary could not be saved. Your changes are kept in memory and in the partial file. "
        "Do you want to try again once you have freed some space?",
        ZBMessageBoxQt::E_Warning, ZBMessageBox::C_Yes, ZBMessageBox::C_No, QString(), QString(),
        "Could not write to the file /home/user/Documents/Diary.zbd\n  Location: LibDatabase/db/zbdatabase.cpp:461\n"
        "  No space left on device");
    box->handle_details();
    int result = save(box);
    box->close();
    return result;
}

int AppScreenshots::show_graph()
{
    ZBDialogQt dialog;
    dialog.setObjectName("graphDemo");
    dialog.setWindowTitle("Work Due");
    dialog.set_restore_geom(false);
    QVBoxLayout* layout = new QVBoxLayout(&dialog);
    ZBGraphQt* graph = new ZBGraphQt;
    graph->setObjectName("graphView");
    layout->addWidget(graph);

    // Entries due by each day of the diary's dates; a diary without dates gets a worked example.
    std::map<std::int64_t, int> perDay;
    std::vector<const DiaryEntry*> stack;
    for (int i = 0; i < m_diary->get_nentries(); ++i)
        stack.push_back(m_diary->get_entry_index(i));
    while (!stack.empty()) {
        const DiaryEntry* entry = stack.back();
        stack.pop_back();
        if (entry->get_due().calc.is_ok())
            ++perDay[entry->get_due().calc.to_micros() / (86400LL * 1000000)];
        for (const DiaryEntry* child : entry->get_children())
            stack.push_back(child);
    }
    ZBTimeGraphSource source;
    source.set_value_type(ZBGraphSource::E_Integer);
    QString title = "Entries due by day";
    if (perDay.size() >= 2) {
        int total = 0;
        for (const auto& day : perDay) {
            total += day.second;
            ZBDate date;
            date.from_micros(day.first * 86400LL * 1000000, ZBDate::C_GMT);
            source.add(date, total, date.to_string("%a %d %b") + ": " + std::to_string(total) + " due by then");
        }
    } else {
        title = "Hours worked by day (example)";
        source.set_value_type(ZBGraphSource::E_Hours);
        const double hours[] = {6.5, 7.25, 8.0, 5.5, 7.75, 0.0, 0.0, 6.0, 8.5, 7.0, 7.5, 4.0, 0.0, 1.0};
        for (int d = 0; d < 14; ++d)
            source.add(ZBDate(2026, 10, 9 + d, 12, 0, 0, 0, ZBDate::C_GMT), hours[d]);
    }
    source.complete(true);
    graph->set_source(source, title);
    dialog.resize(640, 400);
    return save(&dialog);
}

int AppScreenshots::save_box(QWidget& window, const std::string& name, const char* caption)
{
    ZBMessageBoxQt* box = newest_box(window);
    if (!box)
        return zberror(ZBErrC_Error, ZBLOC, "The tour expected a question for %s.", name.c_str());
    int result = save(box, name);
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    return answer(box, caption);
}

int AppScreenshots::show_load()
{
    // Every file of this part of the tour is made in a folder of its own,
    // so the user's files and locks are never touched.
    QTemporaryDir folder;
    if (!folder.isValid())
        return zbwarnuser(ZBErrC_FileCreate, ZBLOC, "Could not create a folder for the tour's files");
    const std::string dir = folder.path().toStdString();
    const std::string diary = dir + "/Diary" + AppDiaryInfo::C_Extension;
    const std::string holiday = dir + "/Holiday" + AppDiaryInfo::C_Extension;
    {
        std::unique_ptr<ZBDatabase> db(AppDiaryInfo::make_database());
        if (iszbwarn(db->load(holiday, true)) || iszbwarn(db->save(true, true, false)))
            return zbpass(ZBLOC);
        db->unload();
    }
    ZBDBManagerQt window(AppDiaryInfo::make_database());
    // The window itself stays hidden: each question is a window of its own.
    // The remembered file has gone: find it, make it, go back, or quit.
    window.do_load(diary, holiday, ZBDBManagerQt::E_LoadPlain);
    int result = save_box(window, "loadChoiceBox", "Quit");
    // Another program has the file open.
    ZBLockFile other;
    if (!iszbwarn(result))
        result = other.lock(holiday, false);
    if (!iszbwarn(result)) {
        window.do_load(holiday, std::string(), ZBDBManagerQt::E_LoadPlain);
        result = save_box(window, "lockedFileBox", "Quit");
    }
    other.unlock();
    // Closing with changes and autosave off.
    if (!iszbwarn(result) && window.do_load(holiday, std::string(), ZBDBManagerQt::E_LoadPlain) != ZBErrC_ok)
        result = zberror(ZBErrC_Error, ZBLOC, "The tour could not open its own file %s", holiday.c_str());
    if (!iszbwarn(result)) {
        ZBDatabase* db = window.get_database();
        db->set_autosave(false);
        db->set_comment("A note made by the tour");
        db->mark_changed(ZBLOC, true);
        db->complete_operation("Change Comment");
        window.do_unload(true);
        result = save_box(window, "saveOnCloseBox", "Cancel");
    }
    // The database page of the settings.
    if (!iszbwarn(result)) {
        ZBSettingsQt settings;
        settings.set_restore_geom(false);
        window.add_settings(settings);
        settings.update_display();
        QTabWidget* tabs = settings.get_tabs();
        tabs->setCurrentIndex(tabs->count() - 1);
        result = save(&settings, "databaseSettingsTab");
    }
    if (!iszbwarn(result))
        result = window.do_unload(false) == ZBErrC_ok ? ZBErrC_ok : answer(newest_box(window), "Discard");
    // The first run, with nothing to open.
    if (!iszbwarn(result)) {
        ZBFirstRunQt* first = new ZBFirstRunQt;
        first->start();
        result = save(first, "firstRunDialog");
        if (!iszbwarn(result)) {
            first->choose(ZBFirstRunQt::E_Shared);
            first->get_path()->setText(folder.path());
            first->scan_shared(folder.path());
            result = save(first, "firstRunShared");
        }
        first->close();
    }
    settle(50);
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

int AppScreenshots::show_notify()
{
    // A window with the bar above its tabs, and the list behind both.
    QMainWindow window;
    window.setObjectName("notifyWindow");
    window.setWindowTitle("Tervalon Diary");
    QWidget* central = new QWidget;
    QVBoxLayout* layout = new QVBoxLayout(central);
    ZBNotifyBarQt* bar = new ZBNotifyBarQt;
    layout->addWidget(bar);
    QTabWidget* tabs = new QTabWidget;
    tabs->setObjectName("mainTab");
    ZBTreeWidgetQt* tree = new ZBTreeWidgetQt;
    tree->setColumnCount(3);
    tree->setHeaderLabels({"Title", "Type", "Due"});
    tree->start_refill();
    for (int i = 0; i < m_diary->get_nentries(); ++i)
        add_entry(*tree, *m_diary->get_entry_index(i), -1);
    tree->complete_refill();
    tree->expandAll();
    tree->resize_columns();
    tabs->addTab(tree, "Tree");
    tabs->addTab(new QWidget, "Planning");
    tabs->addTab(new QWidget, "Week");
    layout->addWidget(tabs, 1);
    window.setCentralWidget(central);
    window.resize(760, 520);

    ZBNotifyListQt list;
    list.initialise(bar->get_tree(), &window, bar);
    list.set_trayicon(":/LibGui/images/32/Notify.svg");
    list.add_scheme(new ZBNotifyScheme(900, "Overdue tasks", ZBNotifyScheme::E_Prompt, std::string(), true, {100, 62, 62}));
    list.add_scheme(new ZBNotifyScheme(600, "Urgent tasks", ZBNotifyScheme::E_Prompt, std::string(), true, {100, 82, 52}));
    list.add_scheme(new ZBNotifyScheme(300, "Tasks that may be late", ZBNotifyScheme::E_List, std::string(), true,
                                       {100, 95, 66}));
    list.add_scheme(new ZBNotifyScheme(200, "Appointments that clash", ZBNotifyScheme::E_List, std::string(), true,
                                       {82, 90, 100}));
    const ZBDate blank(ZBDate::E_Blank);
    list.reset();
    list.add(ZBNotifyItem(900, 400.0, "OVERDUE: Book the plumber (due yesterday 17:00)", 1, blank));
    list.add(ZBNotifyItem(600, 300.0, "Urgent: Measure the kitchen (due today 12:00)", 2, blank));
    list.add(ZBNotifyItem(900, 200.0, "OVERDUE: Clear the borders (due Friday 09:00)", 3, blank));
    list.add(ZBNotifyItem(300, 100.0, "May be late: Sketch the home page (needs 6 hours, 4 free before due)", 4, blank));
    list.add(ZBNotifyItem(200, 100.0, "Clash: Club meeting and Dentist on Thursday 18:30", 5, blank));
    list.add(ZBNotifyItem(ZBNotifyList::C_NotifySystem, 300.0, "Unfilled variables", 6, blank));
    list.update();

    // The dialog first, on its own, so that it shows its first of three alerts.
    ZBNotifyDialogQt* dialog = list.get_dialog();
    dialog->set_restore_geom(false);
    int result = save(dialog);
    dialog->hide();
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    result = save(&window, "notifyBarCollapsed");
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    bar->set_expanded(true);
    result = save(&window, "notifyBarExpanded");
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    window.hide();

    ZBSettingsQt settings;
    settings.setObjectName("notifySettingsDialog");
    settings.set_restore_geom(false);
    settings.add_form(new ZBNotifySettingsQt(list, QSystemTrayIcon::isSystemTrayAvailable()), "&Notifications");
    settings.update_display();
    settings.get_tabs()->setCurrentIndex(settings.get_tabs()->count() - 1);
    return save(&settings, "notifySettings");
}

} // namespace Tervalon
