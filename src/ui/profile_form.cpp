#include "ui/profile_form.h"

#include "ui/shown_text.h"
#include "ui/widgets.h"

#include <algorithm>
#include <utility>

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>
#include <QTabWidget>
#include <QTimeEdit>
#include <QTreeView>
#include <QVBoxLayout>

namespace vardelin::ui {
namespace {

constexpr int kHelpLetters = 36;  // the width of the quick help, in letters
constexpr int kHelpMargins = 48;  // pixels beside its headings, on both sides together
constexpr int kNumberLetters = 9; // of a box for a few digits
constexpr int kShortListRows = 7; // rows of a list that are seen at once
constexpr int kDaily = 0;
constexpr int kWeekly = 1;
constexpr int kMonthly = 2;
constexpr int kYearly = 3;

QListView* tickList(const char* name)
{
    auto* list = named<QListView>(name);
    list->setUniformItemSizes(true);
    list->setMinimumHeight(list->fontMetrics().height() * kShortListRows);
    return list;
}

QLineEdit* numberBox(const char* name)
{
    auto* box = named<QLineEdit>(name);
    box->setFixedWidth(box->fontMetrics().averageCharWidth() * kNumberLetters);
    box->setAlignment(Qt::AlignRight);
    return box;
}

// On a small screen with large letters a page is higher than the frame and can be scrolled.
QScrollArea* scrolling(QWidget* page)
{
    auto* area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setWidget(page);
    // As wide as the page and a bar beside it.
    area->setMinimumWidth(page->minimumSizeHint().width() +
                          area->verticalScrollBar()->sizeHint().width());
    // The page's own colour, which the frame of a tab may differ from.
    area->viewport()->setAutoFillBackground(false);
    page->setAutoFillBackground(false);
    return area;
}

QTimeEdit* timeBox(const char* name)
{
    auto* box = named<QTimeEdit>(name);
    box->setDisplayFormat(QStringLiteral("h:mm:ss AP"));
    return box;
}

} // namespace

ProfileForm::ProfileForm(state::ProfileEditorState& record, state::ProfileFormState& window,
                         ProfileFormHandlers handlers)
    : m_record(record), m_window(window), m_handlers(std::move(handlers))
{
    setObjectName(QStringLiteral("frmProfile"));
    m_tabs = named<QTabWidget>("SSTab1");
    m_tabs->addTab(filesPage(), QStringLiteral("Files And Settings"));
    m_tabs->addTab(scrolling(optionsPage()), QStringLiteral("Backup  Options"));
    m_tabs->addTab(scrolling(schedulePage()), QStringLiteral("Execute && Retention Options"));
    connect(m_tabs, &QTabWidget::currentChanged, this, [this](int tab) {
        m_binder.run([&] {
            m_window.SSTab1 = tab;
            if (m_handlers.SSTab1_Click)
                m_handlers.SSTab1_Click(tab);
        });
    });
    m_binder.also([this] { m_tabs->setCurrentIndex(m_window.SSTab1); });
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(m_tabs, 1);
    layout->addWidget(helpPanel());
    setFocusProxy(&m_tree->tree());
    m_binder.show();
}

QWidget* ProfileForm::filesPage()
{
    auto* page = new QWidget;
    m_tree = new SourceTreeView(m_record, std::move(m_handlers.tree),
                                [this](const Handler& handler) { m_binder.run(handler); });
    m_binder.also([this] { m_tree->showRecord(); });

    auto* include = named<QGroupBox>("fmeInclude", "Include File(s) by File extensions");
    auto* extensions = named<QTreeView>("lstInclude");
    extensions->setRootIsDecorated(false);
    extensions->setUniformRowHeights(true);
    extensions->header()->setSectionsClickable(true);
    m_binder.checkList(*extensions, m_record.lstInclude,
                       {QStringLiteral("File Extensions"), QStringLiteral("Type")},
                       m_handlers.lstInclude_ItemCheck);
    // Made for the heading with a box and an icon in front: as wide as its contents it would
    // measure a thousand rows, their icons included, whenever a record is shown.
    const QStyle& style = *extensions->style();
    extensions->header()->resizeSection(0, extensions->header()->sectionSizeHint(0) +
                                               style.pixelMetric(QStyle::PM_IndicatorWidth) +
                                               style.pixelMetric(QStyle::PM_SmallIconSize));
    connect(extensions->header(), &QHeaderView::sectionClicked, this, [this](int column) {
        m_binder.run([&] {
            if (m_handlers.lstInclude_ColumnClick)
                m_handlers.lstInclude_ColumnClick(column);
        });
    });
    include->setLayout(lined<QVBoxLayout>(extensions));
    m_binder.frame(*include, m_record.fmeInclude);

    auto* other = named<QGroupBox>("fmeOtherData", "Select Other Data To Backup:");
    auto* otherData = tickList("lstOtherData");
    m_binder.selectList(*otherData, m_record.lstOtherData, m_handlers.lstOtherData_ItemCheck);
    other->setLayout(lined<QVBoxLayout>(otherData));
    m_binder.frame(*other, m_record.fmeOtherData);

    auto* exclude = named<QPushButton>("cmdExclude", "Exclude File(s) by E&xtensions...");
    auto* byNames =
        named<QPushButton>("cmdExclInclByNames", "Include\\Exclude File(s) by &Names...");
    connect(exclude, &QPushButton::clicked, this,
            [this] { m_binder.run(m_handlers.cmdExclude_Click); });
    connect(byNames, &QPushButton::clicked, this,
            [this] { m_binder.run(m_handlers.cmdExclInclByNames_Click); });

    auto* side = new QVBoxLayout;
    side->addWidget(include, 3);
    side->addWidget(other, 2);
    side->addWidget(exclude);
    side->addWidget(byNames);
    auto* layout = new QHBoxLayout(page);
    layout->addWidget(m_tree, 3);
    layout->addLayout(side, 2);
    return page;
}

QWidget* ProfileForm::optionsPage()
{
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->addWidget(destinationFrame());
    layout->addWidget(securityFrame());
    layout->addWidget(startupFrame());
    layout->addStretch();
    return page;
}

QWidget* ProfileForm::destinationFrame()
{
    auto* frame = named<QGroupBox>("Frame13", "Backup Storage Location");
    auto* drives = named<QComboBox>("CmbDestDrives");
    auto* folder = named<QLineEdit>("txtDestLoc");
    auto* browse = named<QPushButton>("cmdBrowse", "B&rowse");
    auto* drivesLabel = new QLabel(QStringLiteral("Backup &Media:"));
    auto* folderLabel = new QLabel(QStringLiteral("Backup  &Location:"));
    drivesLabel->setBuddy(drives);
    folderLabel->setBuddy(folder);
    m_binder.comboBox(*drives, m_record.CmbDestDrives, m_handlers.CmbDestDrives);
    m_binder.textBox(*folder, m_record.txtDestLoc, m_handlers.txtDestLoc);
    connect(browse, &QPushButton::clicked, this,
            [this] { m_binder.run(m_handlers.cmdBrowse_Click); });
    auto* grid = new QGridLayout(frame);
    grid->addWidget(drivesLabel, 0, 0);
    grid->addWidget(drives, 0, 1);
    grid->addWidget(folderLabel, 1, 0);
    grid->addWidget(folder, 1, 1);
    grid->addWidget(browse, 1, 2);
    grid->setColumnStretch(1, 1);
    m_binder.frame(*frame, m_record.Frame13);
    return frame;
}

QWidget* ProfileForm::securityFrame()
{
    auto* frame = named<QGroupBox>("Frame10", "BackUp Security");
    auto* compress = named<QCheckBox>("chkCompress", "&Compress Files");
    auto* encrypt = named<QCheckBox>("chkEncrypt", "E&ncrypt Files");
    auto* password = named<QCheckBox>("chkPassword", "Set Passw&ord For Files");
    m_binder.checkBox(*compress, m_record.chkCompress, m_handlers.chkCompress_Click);
    m_binder.checkBox(*encrypt, m_record.chkEncrypt, m_handlers.chkEncrypt_Click);
    m_binder.checkBox(*password, m_record.chkPassword, m_handlers.chkPassword_Click);

    auto* inner = named<QGroupBox>("Frame14", "Password Security");
    auto* text = named<QLineEdit>("txtPassWord");
    text->setEchoMode(QLineEdit::Password);
    text->setAccessibleName(tr("Password"));
    auto* question = named<QComboBox>("cmbHintQues");
    auto* answer = named<QLineEdit>("txtHintAns");
    auto* questionLabel = new QLabel(QStringLiteral("Hint &Question For Password:"));
    auto* answerLabel = new QLabel(QStringLiteral("Hint Answer For Retrie&ving Password :"));
    questionLabel->setBuddy(question);
    answerLabel->setBuddy(answer);
    m_binder.textBox(*text, m_record.txtPassWord, m_handlers.txtPassWord);
    m_binder.comboBox(*question, m_record.cmbHintQues, {m_handlers.cmbHintQues_Click});
    m_binder.textBox(*answer, m_record.txtHintAns, m_handlers.txtHintAns);
    auto* grid = new QGridLayout(inner);
    auto* textLabel = new QLabel(tr("&Password:"));
    textLabel->setBuddy(text);
    grid->addWidget(textLabel, 0, 0);
    grid->addWidget(text, 0, 1);
    grid->addWidget(questionLabel, 1, 0);
    grid->addWidget(question, 1, 1);
    grid->addWidget(answerLabel, 2, 0);
    grid->addWidget(answer, 2, 1);
    grid->setColumnStretch(1, 1);
    m_binder.frame(*inner, m_record.Frame14);

    auto* layout = new QVBoxLayout(frame);
    auto* checks = lined<QHBoxLayout>(compress, encrypt, password);
    checks->addStretch();
    layout->addLayout(checks);
    layout->addWidget(inner);
    m_binder.frame(*frame, m_record.Frame10);
    return frame;
}

QWidget* ProfileForm::startupFrame()
{
    auto* frame = named<QGroupBox>("Frame12", "StartUp Options");
    auto* grid = new QGridLayout(frame);
    int row = 0;
    const auto line = [&](QCheckBox* check, QWidget* box, QWidget* behind) {
        grid->addWidget(check, row, 0);
        grid->addWidget(box, row, 1);
        if (behind != nullptr)
            grid->addWidget(behind, row, 2);
        ++row;
    };
    auto* idle = named<QCheckBox>("chkIdle", "Start Backup When System Is &Idle For Atleast");
    auto* idleTime = numberBox("txtIdleTime");
    m_binder.checkBox(*idle, m_record.chkIdle, m_handlers.chkIdle_Click);
    m_binder.textBox(*idleTime, m_record.txtIdleTime, m_handlers.txtIdleTime);
    line(idle, idleTime, new QLabel(QStringLiteral("min.")));

    auto* size = named<QCheckBox>("chkSizeOfBkp",
                                  "Confirm And Start Backup If Amount Of Backup &Data Is Over");
    auto* sizeBox = numberBox("txtSizeOfBkp");
    auto* sizeUnit = named<QComboBox>("cmbSizeOfBkp");
    m_binder.checkBox(*size, m_record.chkSizeOfBkp, m_handlers.chkSizeOfBkp_Click);
    m_binder.textBox(*sizeBox, m_record.txtSizeOfBkp, m_handlers.txtSizeOfBkp);
    m_binder.comboBox(*sizeUnit, m_record.cmbSizeOfBkp, {m_handlers.cmbSizeOfBkp_Click});
    line(size, sizeBox, sizeUnit);

    auto* queue = named<QCheckBox>("chkQueueThrld",
                                   "Start Backup If Number Of Files In Que&ue Reaches More than");
    auto* queueBox = numberBox("txtQueueThrld");
    m_binder.checkBox(*queue, m_record.chkQueueThrld, m_handlers.chkQueueThrld_Click);
    m_binder.textBox(*queueBox, m_record.txtQueueThrld, m_handlers.txtQueueThrld);
    line(queue, queueBox, new QLabel(QStringLiteral("Files.")));

    auto* warn = named<QCheckBox>("chkWarn", "Warn When Free &Space on Backup Drive is Less than");
    auto* warnBox = numberBox("txtWarn");
    auto* warnLabel = named<QLabel>("Label9");
    m_binder.checkBox(*warn, m_record.chkWarn, m_handlers.chkWarn_Click);
    m_binder.textBox(*warnBox, m_record.txtWarn, m_handlers.txtWarn);
    m_binder.label(*warnLabel, m_record.Label9);
    line(warn, warnBox, warnLabel);

    auto* primary = named<QCheckBox>("chkPrimary", "Primar&y Profile");
    m_binder.checkBox(*primary, m_record.chkPrimary, m_handlers.chkPrimary_Click);
    grid->addWidget(primary, row, 0);
    grid->setColumnStretch(3, 1);
    m_binder.frame(*frame, m_record.Frame12);
    return frame;
}

QWidget* ProfileForm::schedulePage()
{
    auto* tab = new QWidget;
    auto* page = named<QWidget>("Frame1");
    auto* around = lined<QVBoxLayout>(page);
    around->setContentsMargins(0, 0, 0, 0);
    tab->setLayout(around);
    auto* schedule = named<QCheckBox>("chkAutoSched", "&Schedule  at");
    m_binder.checkBox(*schedule, m_record.chkAutoSched, m_handlers.chkAutoSched_Click);

    auto* options = named<QGroupBox>("Frame3", "Scheduling Options");
    auto* start = named<QGroupBox>("Frame4", "Start Date -Time");
    auto* date = named<QDateEdit>("dtpStDate");
    date->setCalendarPopup(true);
    auto* time = timeBox("dtpStTime");
    auto* startLabel = new QLabel(QStringLiteral("&Effective Start Date-Time"));
    startLabel->setBuddy(date);
    m_binder.datePicker(*date, m_record.dtpStDate, m_handlers.dtpStDate_Change);
    m_binder.timePicker(*time, m_record.dtpStTime, m_handlers.dtpStTime_Change);
    auto* startLine = lined<QHBoxLayout>(startLabel, date, time);
    startLine->addStretch();
    start->setLayout(startLine);
    options->setLayout(lined<QVBoxLayout>(start, patternFrame()));
    m_binder.frame(*start, m_record.Frame4);
    m_binder.frame(*options, m_record.Frame3);
    m_binder.frame(*page, m_record.Frame1);

    auto* layout = new QVBoxLayout(page);
    layout->addWidget(schedule);
    layout->addWidget(options);
    layout->addWidget(retentionFrame());
    layout->addStretch();
    return tab;
}

QWidget* ProfileForm::patternFrame()
{
    static constexpr const char* kNames[] = {"optDaily", "optWeekly", "optMonthly", "optYearly"};
    static constexpr const char* kCaptions[] = {"&Daily", "Wee&kly", "&Monthly", "&Yearly"};
    auto* frame = named<QGroupBox>("Frame5", "Recurrence Pattern");
    auto* options = new QVBoxLayout;
    const auto records = m_record.patternOptions();
    for (int i = 0; i < 4; ++i) {
        auto* option = named<QRadioButton>(kNames[i], kCaptions[i]);
        m_binder.optionButton(
            *option, *records[static_cast<std::size_t>(i)],
            [this, i] { state::choose(m_record.patternOptions(), i + 1); },
            m_handlers.optPattern_Click[i]);
        options->addWidget(option);
    }
    options->addStretch();
    auto* layout = new QHBoxLayout(frame);
    layout->addLayout(options);
    // One of the pages is visible at a time, at the same place.
    auto* pages = new QVBoxLayout;
    for (int i = 0; i < 4; ++i)
        pages->addWidget(patternPage(i));
    layout->addLayout(pages, 1);
    m_binder.frame(*frame, m_record.Frame5);
    return frame;
}

QWidget* ProfileForm::patternPage(int pattern)
{
    struct Page {
        const char* frame;
        const char* recur;
        const char* unit;
        const char* time;
        const char* on; // before the lists
    };
    static constexpr Page kPages[] = {
        {"Frame6", "txtDailyRecur", "day(s) at", "dtpDaily", nullptr},
        {"Frame7", "txtWeeklyRecur", "week(s) at", "dtpWeekly", "On"},
        {"Frame8", "txtMonthlyRecur", "month(s) at", "dtpMonthly", "On the date"},
        {"Frame9", "txtYearlyRecur", "year(s) at", "dtpYearly", "On the month and date"}};
    state::TextBox* const recurRecords[] = {&m_record.txtDailyRecur, &m_record.txtWeeklyRecur,
                                            &m_record.txtMonthlyRecur, &m_record.txtYearlyRecur};
    state::TimePicker* const timeRecords[] = {&m_record.dtpDaily, &m_record.dtpWeekly,
                                              &m_record.dtpMonthly, &m_record.dtpYearly};
    state::Frame* const frameRecords[] = {&m_record.Frame6, &m_record.Frame7, &m_record.Frame8,
                                          &m_record.Frame9};
    const Page& page = kPages[pattern];
    auto* frame = named<QWidget>(page.frame);
    auto* recur = numberBox(page.recur);
    auto* time = timeBox(page.time);
    m_binder.textBox(*recur, *recurRecords[pattern], m_handlers.txtRecur[pattern]);
    m_binder.timePicker(*time, *timeRecords[pattern], m_handlers.dtpPattern_Change[pattern]);
    auto* line = new QHBoxLayout;
    line->addWidget(new QLabel(QStringLiteral("Every")));
    line->addWidget(recur);
    line->addWidget(new QLabel(QLatin1String(page.unit)));
    line->addWidget(time);
    line->addStretch();
    auto* layout = new QVBoxLayout(frame);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(line);
    if (page.on != nullptr)
        layout->addWidget(new QLabel(QLatin1String(page.on)));
    auto* lists = new QHBoxLayout;
    const auto list = [&](const char* name, state::ListBox& record, RowHandler handler) {
        auto* view = tickList(name);
        m_binder.selectList(*view, record, std::move(handler));
        lists->addWidget(view);
    };
    if (pattern == kWeekly)
        list("lstWeekDays", m_record.lstWeekDays, m_handlers.lstWeekDays_ItemCheck);
    if (pattern == kMonthly)
        list("lstMonthDate", m_record.lstMonthDate, m_handlers.lstMonthDate_ItemCheck);
    if (pattern == kYearly) {
        list("lstMonth", m_record.lstMonth, m_handlers.lstMonth_ItemCheck);
        list("lstYearDate", m_record.lstYearDate, m_handlers.lstYearDate_ItemCheck);
    }
    layout->addLayout(lists);
    if (pattern == kDaily)
        layout->addStretch();
    m_binder.frame(*frame, *frameRecords[pattern]);
    return frame;
}

QWidget* ProfileForm::retentionFrame()
{
    static constexpr const char* kCaptions[] = {
        "Changes yesterday and today",       "Daily Versions for prior 30 Days",
        "Weekly Versions for prior 4 Weeks", "Monthly Versions for prior 3 Months",
        "Yearly Versions for prior 3 Years", "Retain Last",
        "Original Version Of Files",         "Retain Last"};
    auto* frame = named<QGroupBox>("Frame2", "Retention Options");
    auto* grid = new QGridLayout(frame);
    const auto records = m_record.retentionOptions();
    const auto optionAt = [&](int i) {
        auto* option = new QRadioButton(QLatin1String(kCaptions[i]));
        option->setObjectName(QStringLiteral("optVer%1").arg(i + 1));
        m_binder.optionButton(
            *option, *records[static_cast<std::size_t>(i)],
            [this, i] { state::choose(m_record.retentionOptions(), i + 1); },
            m_handlers.optVer_Click[i]);
        return option;
    };
    for (int i = 0; i < 5; ++i)
        grid->addWidget(optionAt(i), i, 0);
    auto* versions = numberBox("txtLatestVer");
    auto* days = numberBox("txtLatestDaysVer");
    auto* daysLabel = named<QLabel>("Label4", "Days");
    m_binder.textBox(*versions, m_record.txtLatestVer, m_handlers.txtLatestVer);
    m_binder.textBox(*days, m_record.txtLatestDaysVer, m_handlers.txtLatestDaysVer);
    m_binder.label(*daysLabel, m_record.Label4);
    const auto line = [&](int row, QWidget* option, QWidget* box, QWidget* behind) {
        auto* widgets = lined<QHBoxLayout>(option, box, behind);
        widgets->addStretch();
        grid->addLayout(widgets, row, 1);
    };
    line(0, optionAt(5), versions, new QLabel(QStringLiteral("Versions")));
    grid->addWidget(optionAt(6), 1, 1);
    line(2, optionAt(7), days, daysLabel);
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(1, 1);
    m_binder.frame(*frame, m_record.Frame2);
    return frame;
}

QWidget* ProfileForm::helpPanel()
{
    auto* frame = named<QGroupBox>("Frame11", "Quick Help");
    // The widest heading stands out in bold at times and must not be cut then.
    QFont bold = frame->font();
    bold.setBold(true);
    const int widest =
        QFontMetrics(bold).horizontalAdvance(QStringLiteral("Execute & Retention Options"));
    frame->setFixedWidth(
        std::max(frame->fontMetrics().averageCharWidth() * kHelpLetters, widest + kHelpMargins));
    auto* layout = new QVBoxLayout(frame);
    auto* what = named<QLabel>("Label37");
    what->setWordWrap(true);
    layout->addWidget(what);
    struct Heading {
        int number;
        const char* text;
        Handler* click;
    };
    const Heading headings[] = {{33, "Files And Settings", &m_handlers.Label33_Click},
                                {32, "Backup  Options", &m_handlers.Label32_Click},
                                {31, "Execute && Retention Options", &m_handlers.Label31_Click}};
    for (const Heading& heading : headings) {
        auto* button = new QPushButton(QLatin1String(heading.text));
        button->setObjectName(QStringLiteral("Label%1").arg(heading.number));
        button->setFlat(true);
        button->setCursor(Qt::PointingHandCursor);
        button->setStyleSheet(QStringLiteral("text-align: left; padding: 3px 4px;"));
        connect(button, &QPushButton::clicked, this,
                [this, click = heading.click] { m_binder.run(*click); });
        m_binder.also([this, button, number = heading.number] {
            QFont font = button->font();
            font.setBold(m_window.highlightedLabel == number);
            button->setFont(font);
        });
        layout->addWidget(button);
    }
    auto* text = named<QLabel>("Label35");
    text->setWordWrap(true);
    text->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    // A long text scrolls in the panel rather than lose its end.
    QScrollArea* const area = scrolling(text);
    area->setMinimumWidth(0);
    area->setFocusPolicy(Qt::StrongFocus);
    layout->addWidget(area, 1);
    m_binder.also([this, what, text] {
        what->setText(shownLines(m_window.Label37));
        text->setText(shownLines(m_window.Label35));
    });
    return frame;
}

} // namespace vardelin::ui
