#include "support/temp_folder.h"
#include "ui/list_model.h"

#include <filesystem>

#include <gtest/gtest.h>

#include <QIcon>
#include <QPixmap>

namespace vardelin::ui {
namespace {

// A theme of the desktop with one picture, chosen for as long as this lives.
class Theme {
public:
    Theme()
    {
        folder.write("icons/probe/index.theme", "[Icon Theme]\nName=Probe\nDirectories=16\n"
                                                "[16]\nSize=16\nType=Fixed\n");
        std::filesystem::create_directories(folder / "icons/probe/16");
        QIcon::setThemeSearchPaths({QString::fromStdString(folder / "icons")});
        QIcon::setThemeName(QStringLiteral("probe"));
    }
    Theme(const Theme&) = delete;
    Theme& operator=(const Theme&) = delete;
    ~Theme()
    {
        QIcon::setThemeSearchPaths(m_paths);
        QIcon::setThemeName(m_name);
    }
    void add(const std::string& name) const
    {
        QPixmap picture(16, 16);
        picture.fill(Qt::red);
        picture.save(QString::fromStdString(folder / ("icons/probe/16/" + name + ".png")));
    }

    test::TempFolder folder;

private:
    QStringList m_paths = QIcon::themeSearchPaths();
    QString m_name = QIcon::themeName();
};

// On a desktop whose theme has no such icon each look-up asks for hundreds of files.
TEST(ListModel, LooksForAnIconOnceWhetherItIsThereOrNot)
{
    const Theme theme;
    theme.add("text-plain");
    state::ListBox list;
    list.addItem(".txt").icon = "text-plain";
    list.addItem(".odd").icon = "no-such-kind";
    const ListModel model(list, &state::ListRow::checked, {QStringLiteral("Kind")}, {}, nullptr);
    const auto icon = [&](int row) {
        return model.data(model.index(row, 0), Qt::DecorationRole).value<QIcon>();
    };
    EXPECT_FALSE(icon(0).isNull());
    EXPECT_TRUE(icon(1).isNull());

    theme.add("no-such-kind");
    ASSERT_FALSE(QIcon::fromTheme(QStringLiteral("no-such-kind")).isNull()) << "it could be found";
    EXPECT_TRUE(icon(1).isNull()) << "and was not looked for again";
}

} // namespace
} // namespace vardelin::ui
