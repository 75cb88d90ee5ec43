#include "ui/cancel_view.h"

#include "ui/compress_picture.h"
#include "ui/elided_label.h"

#include "looks.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include <QFile>
#include <QImage>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>

namespace vardelin::ui {
namespace {

// The picture as it is installed.
std::string animation()
{
    QFile file(QStringLiteral(VARDELIN_ANIMATION));
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error(VARDELIN_ANIMATION " cannot be read");
    return file.readAll().toStdString();
}

// The same with the least time for each picture, two hundredths of a second.
std::string quickAnimation()
{
    std::string bytes = animation();
    const std::string control("\x21\xf9\x04", 3); // then a byte of flags and the time
    for (auto at = bytes.find(control); at != std::string::npos; at = bytes.find(control, at + 1))
        bytes.replace(at + control.size() + 1, 2, {2, 0});
    return bytes;
}

class CancelForm : public testing::Test {
protected:
    CancelForm()
    {
        form.loaded = form.visible = true;
        handlers.cmdCancel_Click = [this] { did.emplace_back("cancel"); };
        handlers.Form_QueryUnload = [this] {
            did.emplace_back("unload?");
            if (letsGo)
                form.loaded = form.visible = false;
            return letsGo;
        };
    }

    state::frmCancel form;
    CancelHandlers handlers;
    std::vector<std::string> did;
    bool letsGo = false;
};

TEST_F(CancelForm, ShowsTheFileCutInItsMiddleAndWholeInTheToolTip)
{
    CancelView view(form, handlers);
    present(view);
    const auto& file = control<ElidedLabel>(view, "lblBkpFileNames");
    EXPECT_EQ(file.text(), "Looking for files to back up...");
    form.lblBkpFileNames.caption = "C:\\" + std::string(200, 'x') + "\\<b>report.doc";
    view.showRecord();
    EXPECT_TRUE(file.text().startsWith("C:\\xx")) << file.text().toStdString();
    EXPECT_TRUE(file.text().endsWith("\\<b>report.doc")) << file.text().toStdString();
    EXPECT_LT(file.text().size(), 200);
    EXPECT_EQ(file.textFormat(), Qt::PlainText);
    EXPECT_EQ(file.accessibleName(), QString::fromStdString(form.lblBkpFileNames.caption));
    EXPECT_TRUE(file.toolTip().contains(QString(200, 'x') + "\\&lt;b&gt;report.doc"));
}

TEST_F(CancelForm, TheBarFollowsFractionsOfTheRecord)
{
    form.pbBkp = {.value = 0.25, .maximum = 8};
    CancelView view(form, handlers);
    present(view);
    const auto& bar = control<QProgressBar>(view, "pbBkp");
    EXPECT_EQ(bar.maximum(), 10000);
    EXPECT_EQ(bar.value(), 312);
    form.pbBkp.value = 9;
    view.showRecord();
    EXPECT_EQ(bar.value(), 10000);
    form.pbBkp = {.value = 0, .maximum = 0};
    view.showRecord();
    EXPECT_EQ(bar.value(), 0);
}

TEST_F(CancelForm, TellsFilesSpeedAndTimesInWords)
{
    CancelView view(form, handlers);
    present(view);
    EXPECT_EQ(control<QLabel>(view, "lblFiles").text(), "0");
    EXPECT_EQ(control<QLabel>(view, "lblRemaining").text(), "not known yet");
    form.files = 600;
    form.elapsedSeconds = 65;
    form.remainingSeconds = 171;
    form.pbBkp.value = 27;
    view.showRecord();
    EXPECT_EQ(control<QLabel>(view, "lblFiles").text(), "600 (9 a second)");
    EXPECT_EQ(control<QLabel>(view, "lblElapsed").text(), "1 minute 5 seconds");
    EXPECT_EQ(control<QLabel>(view, "lblRemaining").text(), "about 3 minutes");
    form.pbBkp.value = form.pbBkp.maximum;
    form.remainingSeconds = 0;
    view.showRecord();
    EXPECT_EQ(control<QLabel>(view, "lblRemaining").text(), "finishing");
}

TEST(Words, TellALengthOfTimeAsAPersonWould)
{
    const struct {
        double seconds;
        const char* exact;
        const char* about;
    } rows[] = {{-3, "0 seconds", "a few seconds"},
                {0.9, "0 seconds", "a few seconds"},
                {1, "1 second", "a few seconds"},
                {10, "10 seconds", "about 10 seconds"},
                {51, "51 seconds", "about 1 minute"},
                {60, "1 minute", "about 1 minute"},
                {61.5, "1 minute 1 second", "about 2 minutes"},
                {3599, "59 minutes 59 seconds", "about 1 hour"},
                {3600, "1 hour", "about 1 hour"},
                {3659, "1 hour", "about 1 hour 5 minutes"},
                {7380, "2 hours 3 minutes", "about 2 hours 5 minutes"},
                {90000, "1 day 1 hour", "about 1 day 1 hour"},
                {259200, "3 days", "about 3 days"}};
    for (const auto& row : rows) {
        EXPECT_EQ(inWords(row.seconds).toStdString(), row.exact) << row.seconds;
        EXPECT_EQ(aboutInWords(row.seconds).toStdString(), row.about) << row.seconds;
    }
}

TEST_F(CancelForm, LooksAtTheRecordByItselfAndClosesWhenItIsUnloaded)
{
    CancelView view(form, handlers);
    present(view);
    EXPECT_FALSE(view.isModal()) << "the run goes on in front of it";
    form.files = 41;
    EXPECT_TRUE(QTest::qWaitFor([&] { return control<QLabel>(view, "lblFiles").text() == "41"; }));
    form.loaded = false;
    EXPECT_TRUE(QTest::qWaitFor([&] { return !view.isVisible(); }));
    EXPECT_TRUE(did.empty()) << "closed by the program, nobody is asked";
}

TEST_F(CancelForm, TheButtonAndEscAskAndTheWindowStays)
{
    CancelView view(form, handlers);
    present(view);
    control<QPushButton>(view, "cmdCancel").click();
    QTest::keyClick(&view, Qt::Key_Escape);
    EXPECT_EQ(did, (std::vector<std::string>{"cancel", "cancel"}));
    EXPECT_TRUE(view.isVisible());
}

TEST_F(CancelForm, TheCloseBoxMayBeRefused)
{
    CancelView view(form, handlers);
    present(view);
    EXPECT_FALSE(view.close());
    EXPECT_TRUE(view.isVisible());
    letsGo = true;
    EXPECT_TRUE(view.close());
    EXPECT_FALSE(view.isVisible());
    EXPECT_EQ(did, (std::vector<std::string>{"unload?", "unload?"}));
}

TEST_F(CancelForm, ThereIsNoAnimationWithoutItsPicture)
{
    CancelView view(form, handlers);
    present(view);
    EXPECT_FALSE(control<CompressPicture>(view, "VDGIFANI1").isVisible());
}

TEST_F(CancelForm, ThePictureMovesWhileItIsSeen)
{
    form.animation = animation();
    CancelView view(form, handlers);
    present(view);
    auto& picture = control<CompressPicture>(view, "VDGIFANI1");
    EXPECT_TRUE(picture.isVisible());
    EXPECT_GT(picture.width(), 4 * picture.height()) << "as wide as it is stored";
    const QImage first = picture.grab().toImage();
    EXPECT_TRUE(QTest::qWaitFor([&] { return picture.grab().toImage() != first; })) << "it moves";
}

TEST_F(CancelForm, ThePictureGoesOnWhenItHasComeToItsEnd)
{
    form.animation = quickAnimation();
    CancelView view(form, handlers);
    present(view);
    auto& picture = control<CompressPicture>(view, "VDGIFANI1");
    const QImage first = picture.grab().toImage();
    EXPECT_TRUE(QTest::qWaitFor([&] { return picture.grab().toImage() != first; }));
    EXPECT_TRUE(QTest::qWaitFor([&] { return picture.grab().toImage() == first; }));
    EXPECT_TRUE(picture.isVisible());
}

// Its pixels are there or not; smaller, the edges are partly there, whatever lies behind them.
TEST_F(CancelForm, ThePictureHasSoftEdges)
{
    CompressPicture picture(animation());
    picture.resize(picture.sizeHint());
    QImage seen(picture.size(), QImage::Format_ARGB32_Premultiplied);
    seen.fill(Qt::transparent);
    picture.render(&seen, {}, {}, QWidget::RenderFlags());
    int none = 0;
    int partly = 0;
    int wholly = 0;
    for (int y = 0; y < seen.height(); ++y) {
        for (int x = 0; x < seen.width(); ++x) {
            const int alpha = qAlpha(seen.pixel(x, y));
            ++(alpha == 0 ? none : alpha == 255 ? wholly : partly);
        }
    }
    EXPECT_GT(none, wholly);
    EXPECT_GT(wholly, partly);
    EXPECT_GT(partly, 100);
}

TEST_F(CancelForm, ADamagedPictureShowsNothing)
{
    const std::string whole = animation();
    const std::string damaged[] = {"",
                                   "GIF89a",
                                   "no picture at all",
                                   whole.substr(0, 300),
                                   std::string(whole.size(), '\0'),
                                   "x" + whole,
                                   "\x89PNG\r\n\x1a\n" + whole};
    for (const std::string& bytes : damaged) {
        form.animation = bytes;
        CancelView view(form, handlers);
        present(view);
        auto& picture = control<CompressPicture>(view, "VDGIFANI1");
        EXPECT_FALSE(picture.isVisible()) << bytes.substr(0, 20);
        EXPECT_EQ(picture.sizeHint(), QSize(0, 0));
    }
}

TEST_F(CancelForm, APictureDamagedAtAnyPlaceDoesNoHarm)
{
    const std::string whole = animation();
    constexpr std::size_t kPlaces = 40;
    for (std::size_t i = 1; i < kPlaces; ++i) {
        const std::size_t at = whole.size() * i * i / (kPlaces * kPlaces);
        std::string changed = whole;
        changed[at] = static_cast<char>(changed[at] ^ 0x5a);
        for (const std::string& bytes : {changed, whole.substr(0, at)}) {
            CompressPicture picture(bytes);
            picture.resize(300, 50);
            picture.grab();
            EXPECT_EQ(picture.plays(), !picture.sizeHint().isEmpty()) << at;
        }
    }
}

TEST(Looks, NothingIsClippedWhereABackupRuns)
{
    state::frmCancel form;
    form.loaded = form.visible = true;
    form.animation = animation();
    form.lblBkpFileNames.caption = "C:\\home\\anna\\Pictures\\2026\\Holidays in the mountains\\a "
                                   "picture with a rather long name.jpeg";
    form.pbBkp.value = 37.5;
    form.files = 12345;
    form.elapsedSeconds = 4 * 3600 + 59 * 60 + 3;
    form.remainingSeconds = 8 * 3600 + 1;
    inEveryLook([&](const std::string& name) {
        CancelView view(form, {});
        expectGoodLooks(view, "frmCancel-" + name);
        EXPECT_EQ(reached(view), std::vector<std::string>{"cmdCancel"});
    });
}

} // namespace
} // namespace vardelin::ui
