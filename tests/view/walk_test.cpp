// What someone does who has never seen the program, with the keys and the clicks of that person.
// With TQX_VIEW_PICTURES set to a folder, it has a picture of each step afterwards.

#include "Logs.h"

#include "view/MainWindow.h"
#include "view/MessagePage.h"
#include "view/PlotPage.h"
#include "view/PlotPanel.h"
#include "view/TimelinePage.h"
#include "view/TypeList.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QImage>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QTabWidget>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <QTreeWidget>

#include <gtest/gtest.h>

using namespace tqx::view;

namespace
{

class Newcomer : public testing::Test
{
protected:
    Newcomer()
    {
        QSettings().clear();
        m_window.show();
        QApplication::setActiveWindow(&m_window);
    }

    void press(Qt::Key key) { QTest::keyClick(&m_window, key, Qt::ControlModifier); }

    /// Clicks the middle of a row, or twice.
    static void click(QAbstractItemView& view, const QModelIndex& index, bool isDouble = false)
    {
        view.scrollTo(index);
        const QPoint place = view.visualRect(index).center();
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, place);
        if (isDouble)
            QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, place);
    }

    /// Enters a name in the dialog that `open` brings up, and accepts it.
    void answerWith(const QString& path, const std::function<void()>& open)
    {
        bool isAnswered = false;
        QTimer::singleShot(0, &m_window, [&] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            ASSERT_TRUE(dialog);
            take("dialog");
            auto* name = dialog->findChild<QLineEdit*>("fileNameEdit");
            name->clear();
            QTest::keyClicks(name, path);
            QTest::keyClick(name, Qt::Key_Return);
            isAnswered = true;
        });
        open();
        QApplication::setActiveWindow(&m_window);
        EXPECT_TRUE(isAnswered);
    }

    /// A picture of the window and of a dialog before it.
    void take(const char* name)
    {
        const QByteArray folder = qgetenv("TQX_VIEW_PICTURES");
        if (folder.isEmpty())
            return;
        QTest::qWait(300);
        QWidget* dialog = QApplication::activeModalWidget();
        QWidget& shown = dialog ? *dialog : m_window;
        const QString file = QString("walk-%1-%2.png").arg(++m_pictures).arg(name);
        shown.grab().save(QDir(QString::fromLocal8Bit(folder)).filePath(file));
    }

    QTemporaryDir m_folder;
    MainWindow m_window;
    int m_pictures = 0;
};

TEST_F(Newcomer, FindsTheOutageAndExportsThePlotOfASatellite)
{
    const QString log = writeFile(m_folder, "log.tqx", logWithOutage(120));
    take("empty");
    answerWith(log, [&] { press(Qt::Key_O); });
    ASSERT_TRUE(waitFor([&] { return m_window.getDocument().getLog() != nullptr; }));
    take("opened");

    press(Qt::Key_3);
    QTreeWidget& faults = m_window.getTimeline().getFaults();
    ASSERT_TRUE(waitFor([&] { return faults.topLevelItemCount() > 0; }));
    take("timeline");
    const QList<QTreeWidgetItem*> outages =
        faults.findItems("Outage of all messages", Qt::MatchExactly, 2);
    ASSERT_EQ(outages.size(), 1);
    EXPECT_EQ(outages[0]->text(1), "0:01:01");
    faults.setFocus();
    click(faults, faults.model()->index(faults.indexOfTopLevelItem(outages[0]), 2));
    QTest::keyClick(&faults, Qt::Key_Return);
    ASSERT_EQ(m_window.getTabs().currentWidget(), &m_window.getMessages());
    take("outage");

    auto& types = *m_window.findChild<TypeList*>();
    const QList<QTreeWidgetItem*> measurements = types.findItems("MeasEpoch2", Qt::MatchExactly);
    ASSERT_EQ(measurements.size(), 1);
    click(types, types.model()->index(types.indexOfTopLevelItem(measurements[0]), 0));
    ASSERT_TRUE(waitFor([&] { return m_window.getMessages().getRows().getCount() == 240; }));
    auto& tree = *m_window.findChild<QTreeView*>("fields");
    const FieldTreeModel& fields = m_window.getMessages().getFields();
    ASSERT_TRUE(waitFor([&] { return fields.rowOfPath("Type1[0].CN0_dBHz") != FieldRow::none; }));
    take("measurements");
    click(tree, fields.indexOf(fields.rowOfPath("Type1[0].CN0_dBHz")));
    QTest::keyClick(&tree, Qt::Key_Return);

    PlotPage& plots = m_window.getPlots();
    ASSERT_EQ(m_window.getTabs().currentWidget(), &plots);
    ASSERT_EQ(plots.getPanels().size(), 1U);
    ASSERT_TRUE(waitFor([&] { return !plots.getPanels()[0]->getField().isReading(); }));
    ASSERT_EQ(plots.getPanels()[0]->getShown().size(), 1U);
    EXPECT_EQ(plots.getPanels()[0]->getShown()[0]->size(), 240U);
    QTest::qWait(300); // until it is drawn
    take("plot");

    const QString picture = m_folder.filePath("cn0.png");
    answerWith(picture,
               [&] { QTest::mouseClick(plots.findChild<QPushButton*>("export"), Qt::LeftButton); });
    EXPECT_GT(QImage(picture).width(), 600);
    take("exported");
    const QByteArray folder = qgetenv("TQX_VIEW_PICTURES");
    if (!folder.isEmpty())
        QFile::copy(picture, QDir(QString::fromLocal8Bit(folder)).filePath("walk-result.png"));
}

} // namespace
