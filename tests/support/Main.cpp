// main() of every logic test: a Qt application object, a French locale, fatal
// warnings nobody expected.
#include "support/Print.h"

#include <QCoreApplication>
#include <QLocale>
#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Herbora"));
    QLocale::setDefault(QLocale(QLocale::French, QLocale::France));
    return RUN_ALL_TESTS();
}
