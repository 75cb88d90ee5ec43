#include <cstdlib>

#include <gtest/gtest.h>

#include <QApplication>

int main(int count, char** arguments)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    testing::InitGoogleTest(&count, arguments);
    QApplication::setStyle(QStringLiteral("Fusion"));
    const QApplication application(count, arguments);
    return RUN_ALL_TESTS();
}
