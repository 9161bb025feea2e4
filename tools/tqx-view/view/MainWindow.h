#pragma once

#include "model/GnssSurvey.h"
#include "model/LogDocument.h"

#include <QMainWindow>

class QAction;
class QLabel;
class QMenu;
class QProgressBar;
class QTabWidget;

namespace tqx::view
{

class MessagePage;
class PlotPage;
class SkyPage;
class TimelinePage;
class TrackPage;

/// The window of one log.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    MainWindow();
    ~MainWindow() override;

    /// Opens files as one log.
    void open(const QStringList& paths);

    /// Shows what arrives on standard input, which is kept in a temporary file. Once in a process.
    void openStandardInput();

    /// Whether data appended to the file are shown as they come; on for standard input.
    void setFollowing(bool isFollowing);

    LogDocument& getDocument() { return m_document; }
    MessagePage& getMessages() { return *m_messages; }
    PlotPage& getPlots() { return *m_plots; }
    TimelinePage& getTimeline() { return *m_timeline; }
    SkyPage& getSky() { return *m_sky; }
    TrackPage& getTrack() { return *m_track; }
    const GnssSurvey& getSurvey() const { return m_survey; }
    QTabWidget& getTabs() { return *m_tabs; }

    /// The user's session and settings from the last time, stored by QSettings.
    void restoreSession(bool withFiles);
    void saveSession() const;

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void makeMenus();
    void makeFileMenu();
    void makeViewMenu();
    void logOpened(bool isContinued);
    void surveyIfShown();
    void chooseFiles();
    void exportPage();
    void goTo();
    void about();
    void addRecent(const QStringList& paths);
    void showRecent();
    void showState(const QString& text, bool isFault);

    LogDocument m_document;
    GnssSurvey m_survey;
    bool m_isSurveyed = true; ///< or is being read
    QTabWidget* m_tabs;
    MessagePage* m_messages;
    PlotPage* m_plots;
    TimelinePage* m_timeline;
    SkyPage* m_sky;
    TrackPage* m_track;
    QLabel* m_state;
    QProgressBar* m_progress;
    QMenu* m_recent = nullptr;
    QAction* m_follow = nullptr;
    QAction* m_export = nullptr;
    QAction* m_close = nullptr;
    QAction* m_goTo = nullptr;
};

} // namespace tqx::view
