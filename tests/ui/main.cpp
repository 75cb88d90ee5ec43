#include "ui/look.h"

#include <cstdlib>

#include <gtest/gtest.h>

#include <QApplication>

int main(int count, char** arguments)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    testing::InitGoogleTest(&count, arguments);
    QApplication application(count, arguments);
    vardelin::ui::applyLook(application);
    return RUN_ALL_TESTS();
}
