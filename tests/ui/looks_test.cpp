#include "ui/about_view.h"
#include "ui/name_dialog_view.h"
#include "ui/open_profile_view.h"
#include "ui/other_data_view.h"
#include "ui/password_view.h"
#include "ui/splash_view.h"

#include "looks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include <QCheckBox>
#include <QImage>
#include <QMenu>
#include <QPixmap>
#include <QPushButton>

namespace vardelin::ui {
namespace {

// An icon has colours for the menu's ground, which its selected entry has not.
TEST(Looks, TheIconOfASelectedMenuEntryHasTheColourOfItsText)
{
    QPixmap red(32, 32);
    red.fill(Qt::red);
    QMenu menu;
    QAction* const entry = menu.addAction(red, "Entry");
    menu.show();
    const auto reds = [&] {
        const QImage picture = menu.grab().toImage();
        int count = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x)
                count += picture.pixelColor(x, y) == QColor(Qt::red) ? 1 : 0;
        }
        return count;
    };
    EXPECT_GT(reds(), 0);
    menu.setActiveAction(entry);
    EXPECT_EQ(reds(), 0);
}

TEST(Looks, NothingIsClippedInTheExclusions)
{
    state::ProfileEditorState record;
    editor::frmOtherdata form;
    form.visible = true;
    form.lstExcludeSort.Sorted = true;
    record.txtInclNames.text = "Tech*.*,Inf*.*";
    for (const char* extension : {".avi", ".bmp", ".cpp", ".doc", ".gif", ".html", ".jpg", ".mp3",
                                  ".odt", ".pdf", ".png", ".txt", ".xls", ".zip"}) {
        state::ListRow& row = record.lstExclude.addItem(extension);
        row.sub = "Document";
        row.checked = row.text == ".doc" || row.text == ".jpg";
    }
    record.lstExclude.rows[1].selected = true;
    inEveryLook([&](const std::string& name) {
        for (const bool byNames : {true, false}) {
            record.fmeFilesByNames.enabled = byNames;
            record.fmeExclude.enabled = !byNames;
            OtherDataView view(record, form, {});
            expectGoodLooks(view, "frmOtherdata-" + name + (byNames ? "-names" : "-extensions"));
            const std::vector<std::string> names = {"txtInclNames", "txtExclNames", "cmdSetOK",
                                                    "cmdCancel"};
            const std::vector<std::string> extensions = {"lstExclude", "cmdSetOK", "cmdCancel"};
            EXPECT_EQ(reached(view), byNames ? names : extensions);
        }
    });
}

TEST(Looks, NothingIsClippedInTheListOfProfiles)
{
    state::frmOpenProfile form;
    form.Label1.caption = "Select The Profile :";
    form.sorted = true;
    const auto add = [&](const char* name, const char* folder, const char* made) {
        state::ListRow& row = form.lstOpen.addItem(name);
        row.sub = folder;
        row.third = made;
    };
    add("Default.vdp", "C:\\home\\anna\\.local\\share\\vardelin\\Profiles\\",
        "11-02-2026 9:05:03 AM");
    add("Holidays and everything that we keep of them.vdp",
        "C:\\home\\anna\\.local\\share\\vardelin\\Profiles\\", "11-01-2026 10:58:59 PM");
    add("Work.vdp",
        "C:\\home\\anna\\.local\\share\\vardelin\\Profiles\\a folder with a long name\\and one "
        "more\\",
        "10-31-2026 7:00:00 AM");
    form.lstOpen.rows[2].checked = true;
    form.lstOpen.rows[2].selected = true;
    form.cmdClose.enabled = form.cmdSelProfile.enabled = false;
    inEveryLook([&](const std::string& name) {
        OpenProfileView view(form, {});
        expectGoodLooks(view, "frmOpenProfile-" + name);
    });
    form.cmdClose.enabled = form.cmdSelProfile.enabled = true;
    OpenProfileView view(form, {});
    present(view);
    EXPECT_EQ(reached(view),
              (std::vector<std::string>{"lstOpen", "cmdOpen", "cmdClose", "cmdSelProfile"}));
    EXPECT_TRUE(control<QPushButton>(view, "cmdOpen").isDefault());
}

TEST(Looks, NothingIsClippedInTheNameDialog)
{
    state::frmRestDialog form;
    form.txtProfileName.text = "Work";
    inEveryLook([&](const std::string& name) {
        NameDialogView view(form, {});
        expectGoodLooks(view, "frmRestDialog-" + name);
        EXPECT_EQ(reached(view),
                  (std::vector<std::string>{"txtProfileName", "cmdProfileOK", "cmdResCancel"}));
        EXPECT_TRUE(control<QPushButton>(view, "cmdProfileOK").isDefault());
    });
}

TEST(Looks, NothingIsClippedWhereAPasswordIsAsked)
{
    state::frmResPwd review;
    review.txtRespwd.text = "secret";
    for (state::Label* label : {&review.lblNewPass, &review.lblconfirm})
        label->visible = false;
    for (state::TextBox* box : {&review.txtNewPass, &review.txtconfirm})
        box->visible = false;
    state::frmResPwd hint = review;
    hint.Label1.caption = "What was the name of the street where you lived as a child?:";
    state::frmResPwd change;
    change.lblNewPass.caption = "Enter Old password:";
    change.Label1.caption = "Enter New password:";
    change.lblconfirm.caption = "Confirm New password :";
    change.lblForgotPwd.visible = false;
    inEveryLook([&](const std::string& name) {
        PasswordView first(review, {});
        expectGoodLooks(first, "frmResPwd-" + name + "-review");
        EXPECT_EQ(reached(first),
                  (std::vector<std::string>{"txtRespwd", "lblForgotPwd", "cmdOk", "cmdCancel"}));
        PasswordView second(hint, {});
        expectGoodLooks(second, "frmResPwd-" + name + "-hint");
        PasswordView third(change, {});
        expectGoodLooks(third, "frmResPwd-" + name + "-change");
        EXPECT_EQ(reached(third), (std::vector<std::string>{"txtNewPass", "txtRespwd", "txtconfirm",
                                                            "cmdOk", "cmdCancel"}));
    });
}

TEST(Looks, NothingIsClippedInTheAboutBoxAndTheSplash)
{
    SplashRecord record;
    inEveryLook([&](const std::string& name) {
        AboutView about;
        expectGoodLooks(about, "frmAbout-" + name);
        SplashView splash(record, {});
        splash.show();
        QTest::qWait(1);
        keepPicture(splash, "frmSplash-" + name);
        EXPECT_EQ(clippedIn(splash), "") << name;
    });
}

// How far two colours are apart for an eye, 1 to 21: the contrast of the accessibility guidelines.
double contrast(QRgb one, QRgb two)
{
    const auto light = [](QRgb colour) {
        const auto part = [](int value) {
            const double share = value / 255.0;
            return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * part(qRed(colour)) + 0.7152 * part(qGreen(colour)) +
               0.0722 * part(qBlue(colour));
    };
    const double a = light(one) + 0.05;
    const double b = light(two) + 0.05;
    return a > b ? a / b : b / a;
}

TEST(Looks, ABoxStandsOutFromTheWindowInEveryPalette)
{
    inEveryLook([](const std::string& name) {
        QCheckBox box(QStringLiteral("&Compress Files"));
        box.resize(box.sizeHint());
        const QImage picture = box.grab().toImage();
        const QRgb window = box.palette().color(QPalette::Window).rgb();
        double best = 1;
        const int middle = picture.height() / 2;
        // Across the box's left border.
        for (int x = 0; x < picture.height() / 2; ++x)
            best = std::max(best, contrast(picture.pixel(x, middle), window));
        EXPECT_GT(best, 3.0) << name << ": what the guidelines ask of a control's border";
    });
}

} // namespace
} // namespace vardelin::ui
