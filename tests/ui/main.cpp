#include "support/temp_folder.h"
#include "ui/look.h"

#include <cstdlib>

#include <gtest/gtest.h>

#include <QApplication>

int main(int count, char** arguments)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    // What the toolkit keeps, such as how a file dialog was left, is not of who runs the tests.
    const vardelin::test::TempFolder home;
    for (const char* name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
        setenv(name, (home / name).c_str(), 1);
    testing::InitGoogleTest(&count, arguments);
    QApplication application(count, arguments);
    vardelin::ui::applyLook(application);
    return RUN_ALL_TESTS();
}
