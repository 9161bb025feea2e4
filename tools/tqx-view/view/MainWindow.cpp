#include "view/MainWindow.h"

#include "view/Colours.h"
#include "view/MessagePage.h"
#include "view/PlotPage.h"
#include "view/SkyPage.h"
#include "view/StandardInput.h"
#include "view/TimelinePage.h"
#include "view/TrackPage.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QProgressBar>
#include <QSettings>
#include <QStatusBar>
#include <QTabWidget>
#include <QUrl>

#include <exception>

namespace tqx::view
{

namespace
{

constexpr int mostRecent = 10;

} // namespace

MainWindow::MainWindow()
    : m_tabs(new QTabWidget(this)), m_messages(new MessagePage), m_plots(new PlotPage),
      m_timeline(new TimelinePage), m_sky(new SkyPage(m_survey)), m_track(new TrackPage(m_survey)),
      m_state(new QLabel(this)), m_progress(new QProgressBar(this))
{
    setWindowTitle(tr("TQX Viewer"));
    setAcceptDrops(true);
    resize(1400, 860);
    m_tabs->setDocumentMode(true);
    m_tabs->addTab(m_messages, tr("Messages"));
    m_tabs->addTab(m_plots, tr("Plots"));
    m_tabs->addTab(m_timeline, tr("Timeline"));
    m_tabs->addTab(m_sky, tr("Satellites"));
    m_tabs->addTab(m_track, tr("Track"));
    setCentralWidget(m_tabs);
    statusBar()->addWidget(m_state, 1);
    statusBar()->addPermanentWidget(m_progress);
    m_progress->setMaximumWidth(200);
    m_progress->hide();
    makeMenus();

    connect(&m_document, &LogDocument::loading, this, [this] {
        m_progress->setRange(0, 0);
        m_progress->show();
        showState(tr("Opening %1…").arg(m_document.getPaths().join(", ")), false);
    });
    connect(&m_document, &LogDocument::progress, this, [this](qulonglong done, qulonglong all) {
        m_progress->setRange(0, 1000);
        m_progress->setValue(all == 0 ? 0 : static_cast<int>(1000 * done / all));
    });
    connect(&m_document, &LogDocument::opened, this, &MainWindow::logOpened);
    connect(&m_document, &LogDocument::failed, this,
            [this](const QString& reason) { showState(reason, true); });
    connect(&m_document, &LogDocument::warned, this,
            [this](const QString& reason) { showState(reason, true); });
    connect(m_messages, &MessagePage::plotWanted, this,
            [this](const QString& expression, const QString& identity) {
                m_plots->add(expression, identity);
                m_tabs->setCurrentWidget(m_plots);
            });
    for (const ExportPage* page :
         std::initializer_list<const ExportPage*>{m_plots, m_timeline, m_sky, m_track}) {
        connect(page, &ExportPage::failed, this,
                [this](const QString& reason) { showState(reason, true); });
    }
    connect(m_timeline, &TimelinePage::timeWanted, this, [this](qlonglong time) {
        m_tabs->setCurrentWidget(m_messages);
        m_messages->goToTime(time);
    });
    connect(m_timeline, &TimelinePage::offsetWanted, this, [this](qulonglong offset) {
        m_tabs->setCurrentWidget(m_messages);
        m_messages->goToOffset(offset);
    });
    connect(&m_survey, &GnssSurvey::failed, this,
            [this](const QString& reason) { showState(reason, true); });
    connect(m_tabs, &QTabWidget::currentChanged, this, [this] {
        surveyIfShown();
        m_export->setEnabled(qobject_cast<ExportPage*>(m_tabs->currentWidget()) != nullptr);
    });
    m_export->setEnabled(false); // the first page has nothing to export
    logOpened(false);
}

// The pages refer to the survey, and go before it.
MainWindow::~MainWindow()
{
    delete takeCentralWidget();
}

/// The log is read for satellites and positions once one of their pages is shown.
void MainWindow::surveyIfShown()
{
    const bool isShown = m_tabs->currentWidget() == m_sky || m_tabs->currentWidget() == m_track;
    if (!isShown || m_isSurveyed)
        return;
    m_isSurveyed = true;
    m_survey.setLog(m_document.getTqxLog(), true); // another log has been cleared away
}

void MainWindow::makeMenus()
{
    makeFileMenu();
    makeViewMenu();
    QMenu* help = menuBar()->addMenu(tr("&Help"));
    help->addAction(tr("&About"), this, &MainWindow::about);
}

void MainWindow::makeFileMenu()
{
    QMenu* file = menuBar()->addMenu(tr("&File"));
    file->addAction(tr("&Open…"), this, &MainWindow::chooseFiles, QKeySequence::Open);
    m_recent = file->addMenu(tr("Open &Recent"));
    connect(m_recent, &QMenu::aboutToShow, this, &MainWindow::showRecent);
    showRecent();
    m_follow = file->addAction(tr("&Follow"));
    m_follow->setShortcut(QKeySequence("Ctrl+L"));
    m_follow->setCheckable(true);
    m_follow->setToolTip(tr("Show data appended to the file as they come"));
    connect(m_follow, &QAction::toggled, this, [this](bool isOn) {
        m_document.setFollowing(isOn);
        m_messages->setStickingToEnd(isOn);
    });
    m_export =
        file->addAction(tr("&Export…"), this, &MainWindow::exportPage, QKeySequence("Ctrl+E"));
    m_close = file->addAction(tr("&Close"), &m_document, &LogDocument::close, QKeySequence::Close);
    file->addSeparator();
    file->addAction(tr("&Quit"), this, &QWidget::close, QKeySequence::Quit);
}

void MainWindow::makeViewMenu()
{
    QMenu* view = menuBar()->addMenu(tr("&View"));
    for (int i = 0; i < m_tabs->count(); ++i) {
        QAction* show = view->addAction(m_tabs->tabText(i));
        show->setShortcut(QKeySequence(QString("Ctrl+%1").arg(i + 1)));
        connect(show, &QAction::triggered, this, [this, i] { m_tabs->setCurrentIndex(i); });
    }
    view->addSeparator();
    m_goTo = view->addAction(tr("&Go to Time or Offset…"), this, &MainWindow::goTo,
                             QKeySequence("Ctrl+G"));
    view->addAction(
        tr("&Find by Condition"), this,
        [this] {
            m_tabs->setCurrentWidget(m_messages);
            m_messages->focusCondition();
        },
        QKeySequence::Find);
}

void MainWindow::open(const QStringList& paths)
{
    if (paths.isEmpty())
        return;
    if (paths == QStringList("-")) {
        openStandardInput();
        return;
    }
    addRecent(paths);
    m_document.open(paths);
}

void MainWindow::openStandardInput()
{
    m_document.open({StandardInput::path()});
    m_follow->setChecked(true);
}

void MainWindow::setFollowing(bool isFollowing)
{
    if (isFollowing)
        m_follow->setChecked(true);
}

void MainWindow::logOpened(bool isContinued)
{
    const std::shared_ptr<const MessageLog>& log = m_document.getLog();
    m_progress->hide();
    m_messages->setLog(log, isContinued);
    m_plots->setLog(log, isContinued);
    m_timeline->setLog(log, isContinued);
    m_isSurveyed = log == nullptr;
    if (!isContinued)
        m_survey.setLog(nullptr);
    m_sky->setHasLog(log != nullptr);
    m_track->setHasLog(log != nullptr);
    surveyIfShown();
    m_follow->setEnabled(!log || m_document.canFollow());
    m_close->setEnabled(log != nullptr);
    m_goTo->setEnabled(log != nullptr);
    if (!log) {
        setWindowTitle(tr("TQX Viewer"));
        showState(tr("No log is open."), false);
        return;
    }
    const QString name = QFileInfo(log->getName()).fileName();
    setWindowTitle(tr("%1 – TQX Viewer").arg(name));
    QString text = QLocale().formattedDataSize(static_cast<qint64>(log->getSize()));
    if (log->getFirstTime() && log->getLastTime()) {
        text = tr("%1,  %2 to %3 GPS")
                   .arg(text, log->timeText(*log->getFirstTime(), false),
                        log->timeText(*log->getLastTime(), false));
    }
    showState(text, false);
}

void MainWindow::showState(const QString& text, bool isFault)
{
    QPalette colours = palette();
    if (isFault) {
        m_progress->hide();
        colours.setColor(QPalette::WindowText, faultColour(palette()));
    }
    m_state->setPalette(colours);
    m_state->setText(text);
    m_state->setToolTip(text);
}

void MainWindow::chooseFiles()
{
    const QStringList paths = QFileDialog::getOpenFileNames(
        this, tr("Open Logs"), {}, tr("Logs (*.tqx *.tqx.gz *.tqx.zst);;All files (*)"));
    open(paths);
}

void MainWindow::exportPage()
{
    if (auto* page = qobject_cast<ExportPage*>(m_tabs->currentWidget()))
        page->chooseExport();
}

void MainWindow::goTo()
{
    const std::shared_ptr<const MessageLog> log = m_document.getLog();
    if (!log)
        return;
    bool isGiven = false;
    const QString text = QInputDialog::getText(
        this, tr("Go to Time or Offset"),
        tr("A GPS time, as 2026-01-06T12:00:00 or 2400:216000, or @ and a byte of the log:"),
        QLineEdit::Normal, {}, &isGiven);
    if (!isGiven)
        return;
    m_tabs->setCurrentWidget(m_messages);
    if (text.startsWith('@')) {
        bool isNumber = false;
        const qulonglong offset = text.mid(1).toULongLong(&isNumber);
        if (isNumber) {
            m_messages->goToOffset(offset);
        } else {
            showState(tr("%1 is not an offset").arg(text), true);
        }
        return;
    }
    try {
        m_messages->goToTime(log->parseTime(text));
    } catch (const std::exception& error) {
        showState(QString::fromUtf8(error.what()), true);
    }
}

void MainWindow::about()
{
    QMessageBox::about(this, tr("About TQX Viewer"),
                       tr("<b>TQX Viewer %1</b><p>Shows what a log of a GNSS receiver holds: "
                          "messages, fields, bytes, plots, satellites and outages.")
                           .arg(QApplication::applicationVersion()));
}

void MainWindow::addRecent(const QStringList& paths)
{
    QSettings settings;
    QStringList recent = settings.value("recent").toStringList();
    for (const QString& path : paths) {
        const QString absolute = QFileInfo(path).absoluteFilePath();
        recent.removeAll(absolute);
        recent.prepend(absolute);
    }
    settings.setValue("recent", QStringList(recent.mid(0, mostRecent)));
}

void MainWindow::showRecent()
{
    m_recent->clear();
    const QStringList recent = QSettings().value("recent").toStringList();
    for (const QString& path : recent)
        m_recent->addAction(path, this, [this, path] { open({path}); });
    if (recent.isEmpty())
        m_recent->addAction(tr("None yet"))->setEnabled(false);
}

void MainWindow::restoreSession(bool withFiles)
{
    QSettings settings;
    restoreGeometry(settings.value("window/geometry").toByteArray());
    m_messages->restore(settings);
    m_plots->restore(settings);
    m_tabs->setCurrentIndex(settings.value("window/tab", 0).toInt());
    const QStringList paths = settings.value("session/files").toStringList();
    bool areThere = !paths.isEmpty();
    for (const QString& path : paths)
        areThere = areThere && QFileInfo::exists(path);
    if (withFiles && areThere)
        m_document.open(paths);
}

void MainWindow::saveSession() const
{
    QSettings settings;
    settings.setValue("window/geometry", saveGeometry());
    settings.setValue("window/tab", m_tabs->currentIndex());
    m_messages->save(settings);
    m_plots->save(settings);
    QStringList paths;
    for (const QString& path : m_document.getPaths()) {
        if (path != StandardInput::pathIfOpen())
            paths += QFileInfo(path).absoluteFilePath();
    }
    settings.setValue("session/files", paths);
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event)
{
    QStringList paths;
    for (const QUrl& url : event->mimeData()->urls()) {
        if (url.isLocalFile())
            paths += url.toLocalFile();
    }
    open(paths);
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    saveSession();
    event->accept();
}

} // namespace tqx::view
