#include "ui/restore_view.h"

#include "ui/widgets.h"

#include <algorithm>
#include <utility>

#include <QCalendarWidget>
#include <QComboBox>
#include <QDate>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QTableView>
#include <QTextCharFormat>
#include <QToolButton>
#include <QVBoxLayout>

namespace vardelin::ui {
namespace {

constexpr int kWatchMs = 100;
constexpr int kBoxLetters = 44; // the width of the location's box, in letters
constexpr int kCalendarLetters = 48;
constexpr int kBarSteps = 10000; // the record's bar moves by fractions

// An arrow head in a calendar's line of the month, in its letters' colour.
QIcon arrowHead(const QWidget& calendar, bool isLeft)
{
    const int side = calendar.fontMetrics().height();
    QPixmap picture(QSize(side, side) * calendar.devicePixelRatioF());
    picture.setDevicePixelRatio(calendar.devicePixelRatioF());
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(calendar.palette().color(QPalette::HighlightedText), side / 9.0,
                        Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const double tip = side * (isLeft ? 0.36 : 0.64);
    const double back = side * (isLeft ? 0.6 : 0.4);
    painter.drawPolyline(QPolygonF({{back, side * 0.22}, {tip, side * 0.5}, {back, side * 0.78}}));
    painter.end();
    return picture;
}

} // namespace

// ---- where to

RestoreLocationView::RestoreLocationView(state::frmRestLocation& form,
                                         RestoreLocationHandlers handlers, RestoreProgress progress,
                                         QWidget* parent)
    : ModalForm("frmRestDialog", form.caption, form.loaded, parent), m_form(form),
      m_progress(progress), m_watch(this)
{
    auto* question = named<QLabel>("Label1");
    auto* mode = named<QComboBox>("cmbRestLoc");
    auto* place = named<QLineEdit>("txtRestLoc");
    auto* browse = named<QPushButton>("cmdBrowse");
    auto* accept = named<QPushButton>("cmdOK");
    auto* cancel = named<QPushButton>("cmdCancel");
    question->setBuddy(mode);
    mode->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    mode->setAccessibleName(tr("Restore location"));
    place->setAccessibleName(tr("Folder to restore to"));
    place->setMinimumWidth(place->fontMetrics().averageCharWidth() * kBoxLetters);
    browse->setAutoDefault(false);
    m_binder.label(*question, form.Label1);
    m_binder.comboBox(*mode, form.cmbRestLoc, std::move(handlers.cmbRestLoc));
    m_binder.textBox(*place, form.txtRestLoc, std::move(handlers.txtRestLoc));
    m_binder.button(*browse, form.cmdBrowse, std::move(handlers.cmdBrowse_Click));
    m_binder.button(*accept, form.cmdOK, std::move(handlers.cmdOK_Click));
    m_binder.button(*cancel, form.cmdCancel, std::move(handlers.cmdCancel_Click));

    m_bar = named<QProgressBar>("pb");
    m_bar->setRange(0, kBarSteps);
    m_bar->setAccessibleName(tr("Progress of the restore"));
    QSizePolicy keepsRoom = m_bar->sizePolicy();
    keepsRoom.setRetainSizeWhenHidden(true);
    m_bar->setSizePolicy(keepsRoom);

    auto* row = lined<QHBoxLayout>(mode, place, browse);
    row->setStretch(1, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(question);
    layout->addLayout(row);
    layout->addWidget(m_bar);
    layout->addStretch();
    addButtons(*layout, {accept, cancel});
    m_watch.setInterval(kWatchMs);
    connect(&m_watch, &QTimer::timeout, this, &RestoreLocationView::showRun);
    m_binder.also([this] { showRun(); });
    m_binder.show();
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

void RestoreLocationView::showRun()
{
    const bool running = m_progress.running;
    m_bar->setVisible(running);
    const state::ProgressBar& bar = m_progress.bar;
    const double share = bar.maximum > 0 ? std::clamp(bar.value / bar.maximum, 0.0, 1.0) : 0;
    m_bar->setValue(static_cast<int>(share * kBarSteps));
    if (m_form.hourglass)
        setCursor(Qt::WaitCursor);
    else
        unsetCursor();
    if (!running) {
        // The record says what can be used. A control that was shut lost the focus.
        if (m_focused != nullptr)
            m_focused->setFocus();
        m_focused = nullptr;
        return;
    }
    if (m_focused == nullptr)
        m_focused = focusWidget();
    for (const char* name : {"cmbRestLoc", "txtRestLoc", "cmdBrowse", "cmdOK", "cmdCancel"})
        findChild<QWidget*>(QLatin1String(name))->setEnabled(false);
}

void RestoreLocationView::reject()
{
    if (!m_progress.running)
        ModalForm::reject();
}

void RestoreLocationView::showEvent(QShowEvent* event)
{
    ModalForm::showEvent(event);
    m_watch.start();
}

void RestoreLocationView::hideEvent(QHideEvent* event)
{
    m_watch.stop();
    ModalForm::hideEvent(event);
}

// ---- as of when

ByDateView::ByDateView(state::frmByDate& form, ByDateHandlers handlers, QWidget* parent)
    : ModalForm("frmByDate", form.caption, form.loaded, parent), m_watch(this)
{
    auto* calendar = named<QCalendarWidget>("mnvResDate");
    auto* accept = named<QPushButton>("cmdOk");
    auto* cancel = named<QPushButton>("cmdCancel");
    calendar->setAccessibleName(tr("Day to restore"));
    // The keyboard is in the table of days.
    for (auto* days : calendar->findChildren<QTableView*>())
        days->setAccessibleName(calendar->accessibleName());
    calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    // Red days of the style's own are not readable on a dark ground, and mean nothing here.
    for (const auto day : {Qt::Saturday, Qt::Sunday})
        calendar->setWeekdayTextFormat(day, QTextCharFormat());
    for (const bool isLeft : {true, false}) {
        auto* button =
            calendar->findChild<QToolButton*>(isLeft ? QStringLiteral("qt_calendar_prevmonth")
                                                     : QStringLiteral("qt_calendar_nextmonth"));
        if (button != nullptr)
            button->setIcon(arrowHead(*calendar, isLeft));
    }
    calendar->setMinimumWidth(calendar->fontMetrics().averageCharWidth() * kCalendarLetters);
    connect(calendar, &QCalendarWidget::selectionChanged, this, [this, calendar, &form] {
        const QDate day = calendar->selectedDate();
        form.mnvResDate = {day.year(), day.month(), day.day()};
        m_binder.show();
    });
    m_binder.also([calendar, &form] {
        const QDate day(form.mnvResDate.year, form.mnvResDate.month, form.mnvResDate.day);
        if (calendar->selectedDate() != day)
            calendar->setSelectedDate(day);
    });
    m_binder.button(*accept, form.cmdOk, handlers.cmdOk_Click);
    m_binder.button(*cancel, form.cmdCancel, std::move(handlers.cmdCancel_Click));
    connect(calendar, &QCalendarWidget::activated, accept, &QPushButton::click);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(calendar);
    addButtons(*layout, {accept, cancel});
    layout->setSizeConstraint(QLayout::SetFixedSize);
    m_watch.setInterval(kWatchMs);
    connect(&m_watch, &QTimer::timeout, this, [this] { m_binder.show(); });
    m_binder.show();
}

void ByDateView::showEvent(QShowEvent* event)
{
    ModalForm::showEvent(event);
    m_watch.start();
}

void ByDateView::hideEvent(QHideEvent* event)
{
    m_watch.stop();
    ModalForm::hideEvent(event);
}

} // namespace vardelin::ui
