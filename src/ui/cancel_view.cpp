#include "ui/cancel_view.h"

#include "ui/compress_picture.h"
#include "ui/elided_label.h"
#include "ui/shown_text.h"
#include "ui/widgets.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace vardelin::ui {
namespace {

constexpr int kWatchMs = 100;
constexpr int kLetters = 64;        // the width of the window, in letters
constexpr int kBarSteps = 10000;    // the record's bar moves by fractions
constexpr double kLeastSeconds = 1; // before a speed is told

struct Unit {
    std::int64_t seconds;
    const char* one;
    const char* many;
};
constexpr std::array kUnits{Unit{86400, "1 day", "%1 days"}, Unit{3600, "1 hour", "%1 hours"},
                            Unit{60, "1 minute", "%1 minutes"}, Unit{1, "1 second", "%1 seconds"}};

QString counted(std::int64_t count, const Unit& unit)
{
    return count == 1 ? QString::fromLatin1(unit.one) : QString::fromLatin1(unit.many).arg(count);
}

} // namespace

QString inWords(double seconds)
{
    auto left = static_cast<std::int64_t>(std::max(seconds, 0.0));
    for (std::size_t i = 0; i < kUnits.size(); ++i) {
        const std::int64_t whole = left / kUnits[i].seconds;
        if (whole == 0 && i + 1 < kUnits.size())
            continue;
        QString first = counted(whole, kUnits[i]);
        left %= kUnits[i].seconds;
        if (i + 1 == kUnits.size() || left < kUnits[i + 1].seconds)
            return first;
        return first + QLatin1Char(' ') + counted(left / kUnits[i + 1].seconds, kUnits[i + 1]);
    }
    return {};
}

QString aboutInWords(double seconds)
{
    constexpr double kFew = 10;
    constexpr double kMinute = 60;
    constexpr double kHour = 3600;
    if (seconds < kFew)
        return QStringLiteral("a few seconds");
    // Coarser than the figure is, since it moves with every file.
    const double step = seconds < kMinute ? kFew : seconds < kHour ? kMinute : 5 * kMinute;
    return QStringLiteral("about ") + inWords(std::ceil(seconds / step) * step);
}

CancelView::CancelView(state::frmCancel& form, CancelHandlers handlers, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                          Qt::WindowCloseButtonHint),
      m_form(form), m_handlers(std::move(handlers)), m_watch(this)
{
    setObjectName(QStringLiteral("frmCancel"));
    setWindowTitle(shown(form.caption));
    build();
    m_watch.setInterval(kWatchMs);
    connect(&m_watch, &QTimer::timeout, this, &CancelView::showRecord);
    m_binder.also([this] { showFacts(); });
    m_binder.show();
}

void CancelView::build()
{
    auto* layout = new QVBoxLayout(this);
    m_picture = named<CompressPicture>("VDGIFANI1", m_form.animation);
    layout->addWidget(m_picture, 0, Qt::AlignHCenter);
    m_picture->setVisible(m_picture->plays());
    m_file = named<ElidedLabel>("lblBkpFileNames");
    layout->addWidget(m_file);
    m_bar = named<QProgressBar>("pbBkp");
    m_bar->setRange(0, kBarSteps);
    m_bar->setAccessibleName(tr("Progress of the backup"));
    layout->addWidget(m_bar);
    auto* grid = new QGridLayout;
    grid->setColumnStretch(1, 1);
    m_files = addFact(*grid, "lblFiles", tr("Files:"));
    m_elapsed = addFact(*grid, "lblElapsed", tr("Time elapsed:"));
    m_remaining = addFact(*grid, "lblRemaining", tr("Time left:"));
    layout->addLayout(grid);
    layout->addStretch();
    auto* cancel = named<QPushButton>("cmdCancel");
    m_binder.button(*cancel, m_form.cmdCancel, m_handlers.cmdCancel_Click);
    auto* row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(cancel);
    layout->addSpacing(layout->spacing());
    layout->addLayout(row);
    setMinimumWidth(fontMetrics().averageCharWidth() * kLetters);
}

QLabel* CancelView::addFact(QGridLayout& grid, const char* name, const QString& caption)
{
    auto* label = named<QLabel>(name);
    label->setTextFormat(Qt::PlainText);
    const int row = grid.rowCount();
    grid.addWidget(new QLabel(caption), row, 0);
    grid.addWidget(label, row, 1);
    return label;
}

void CancelView::showRecord()
{
    m_binder.show();
}

void CancelView::showFacts()
{
    const QString file = shown(m_form.lblBkpFileNames.caption);
    m_file->setWhole(file.isEmpty() ? tr("Looking for files to back up...") : file);
    const state::ProgressBar& bar = m_form.pbBkp;
    const double share = bar.maximum > 0 ? std::clamp(bar.value / bar.maximum, 0.0, 1.0) : 0;
    m_bar->setValue(static_cast<int>(share * kBarSteps));
    QString files = QLocale().toString(static_cast<qulonglong>(m_form.files));
    if (m_form.elapsedSeconds >= kLeastSeconds) {
        const double speed = static_cast<double>(m_form.files) / m_form.elapsedSeconds;
        if (speed >= 1)
            files += tr(" (%L1 a second)").arg(std::llround(speed));
    }
    m_files->setText(files);
    m_elapsed->setText(inWords(m_form.elapsedSeconds));
    m_remaining->setText(m_form.remainingSeconds > 0 ? aboutInWords(m_form.remainingSeconds)
                         : share >= 1                ? tr("finishing")
                                                     : tr("not known yet"));
    if (!m_form.loaded && isVisible())
        accept();
}

void CancelView::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    m_watch.start();
}

void CancelView::hideEvent(QHideEvent* event)
{
    m_watch.stop();
    QDialog::hideEvent(event);
}

void CancelView::reject()
{
    // Esc means the button: the window stays until the run has ended.
    m_binder.run(m_handlers.cmdCancel_Click);
}

void CancelView::closeEvent(QCloseEvent* event)
{
    bool goes = true;
    if (m_form.loaded && m_handlers.Form_QueryUnload)
        goes = m_handlers.Form_QueryUnload();
    event->setAccepted(goes);
}

} // namespace vardelin::ui
