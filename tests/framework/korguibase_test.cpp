#include "QtPrinters.h"

#include <CallBackFunctions.h>
#include <MemLeakTracer.h>

#include <QString>

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace
{

TEST(MemLeakTracer, CountsPerName)
{
    MemLeakTracer::allocateObject("Apple");
    MemLeakTracer::allocateObject(QStringLiteral("Apple"));
    MemLeakTracer::allocateObject(QStringLiteral("Äpfel"));
    MemLeakTracer::deallocateObject(std::string("Apple").c_str());
    MemLeakTracer::deallocateObject("Pear");
    MemLeakTracer::allocateObject("Plum");
    MemLeakTracer::deallocateObject(QStringLiteral("Plum"));
    MemLeakTracer::allocateObject(QString(500, QLatin1Char('x')));
    MemLeakTracer::deallocateObject(std::string(500, 'x').c_str());

    EXPECT_EQ(MemLeakTracer::getObjectCount("Apple"), 1);
    EXPECT_EQ(MemLeakTracer::getTotalAllocations("Apple"), 2);
    EXPECT_EQ(MemLeakTracer::getObjectCount("Pear"), -1);
    EXPECT_EQ(MemLeakTracer::getTotalAllocations("Pear"), 0);
    EXPECT_EQ(MemLeakTracer::getObjectCount("Plum"), 0);
    EXPECT_EQ(MemLeakTracer::getObjectCount("Cherry"), 0);
    EXPECT_EQ(MemLeakTracer::getObjectCount(QString(500, QLatin1Char('x'))), 0);
    const QStringList unbalanced = MemLeakTracer::getUnbalancedNames();
    for (const char* name : {"Apple", "Pear", "Äpfel"}) {
        EXPECT_TRUE(unbalanced.contains(QString::fromUtf8(name))) << name;
    }
    EXPECT_FALSE(unbalanced.contains(QStringLiteral("Plum")));

    MemLeakTracer::reset();
    EXPECT_EQ(MemLeakTracer::getTotalAllocations("Apple"), 0);
    EXPECT_EQ(MemLeakTracer::getUnbalancedNames(), QStringList());
}

TEST(MemLeakTracer, LosesNoCountWhileThreadsAddNames)
{
    // More names than the first table takes; every thread meets all of them.
    constexpr int nameCount = 20000;
    std::vector<std::string> names;
    for (int i = 0; i < nameCount; ++i) {
        names.push_back("Object_" + std::to_string(i) + "_of_a_class");
    }
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&names, thread] {
            for (int i = 0; i < nameCount; ++i) {
                const int at = thread % 2 == 0 ? i : nameCount - 1 - i;
                const char* name = names[static_cast<size_t>(at)].c_str();
                MemLeakTracer::allocateObject(name);
                MemLeakTracer::allocateObject(name);
                MemLeakTracer::deallocateObject(name);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const std::string& name : names) {
        const QString text = QString::fromStdString(name);
        ASSERT_EQ(MemLeakTracer::getTotalAllocations(text), 8) << name;
        ASSERT_EQ(MemLeakTracer::getObjectCount(text), 4) << name;
    }
    MemLeakTracer::reset();
}

QStringList reported;

TEST(CallBackFunctions, ServeTheDiagnostics)
{
    const dbg_CallBacks_s* table = getCallBackFunctions();
    ASSERT_EQ(table, getCallBackFunctions());
    qputenv("KOR_FRAMEWORK_TEST", "yes");
    EXPECT_STREQ(table->lookup(table->context, "KOR_FRAMEWORK_TEST"), "yes");
    EXPECT_EQ(table->lookup(table->context, "KOR_FRAMEWORK_TEST_UNSET"), nullptr);

    table->setStream(table->context, stderr);
    EXPECT_EQ(getDiagnosticsStream(), stderr);

    int shared = 0;
    const auto count = [table, &shared] {
        for (int i = 0; i < 10000; ++i) {
            table->lock(table->context);
            table->lock(table->context);
            ++shared;
            table->unlock(table->context);
            table->unlock(table->context);
        }
    };
    std::thread other(count);
    count();
    other.join();
    EXPECT_EQ(shared, 20000);

    const auto previous =
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
            reported += QString::number(type) + QLatin1Char(' ') + text;
        });
    table->report(table->context, "ASRT: 100% wrong");
    qInstallMessageHandler(previous);
    EXPECT_EQ(reported, QStringList{QString::number(QtCriticalMsg) + " ASRT: 100% wrong"});
}

} // namespace
