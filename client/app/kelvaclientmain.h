#pragma once

#include "documents/documentquery.h"
#include "documents/recordeditor.h"
#include "server/session.h"
#include "ui_kelvaclientmain.h"

#include <QItemSelection>
#include <QMainWindow>
#include <QMap>
#include <QMutex>

#include <memory>

class ClassifyInterface;
class ColumnEditors;
class KelvaArchiveWorker;
class KelvaDelegate;
class KelvaDocLogin;
class KelvaDocTree;
class KelvaExtSearch;
class KelvaTrashButton;
class QLabel;
class QProgressDialog;
class QStandardItem;
class QTimer;
class QToolBar;
class QtToolBarManager;
class RefreshGate;
class SearchCell;
class WindowLayout;
class kelvaArchiveClientInterface;
class kelvastatusbarext;
struct CellEdit;
struct WorkbenchData;

/// The main window. It owns the session and what hangs on it and lends both to panels and dialogs. Rules
/// stand beside it, as functions of their inputs; here they are wired. The groups below name the file they
/// are in.
class KelvaClientMain : public QMainWindow, private Ui_KelvaClientMain
{
    Q_OBJECT

public:
    explicit KelvaClientMain(QWidget *parent = nullptr);
    ~KelvaClientMain() override;

public slots:
    // app/kelvaclientmain.cpp
    /// Loads the service plug-ins, logs in and shows the window; quits the program on failure.
    bool init();
    void show();
    void showAbout();
    void showHelp();

    // app/kelvaclientmain_login.cpp
    void changePassword();
    /// Reloads the session's vocabulary. False when the window had to be closed.
    bool updateAll(bool updateDocs = true);
    void clientDisconnected();
    void handleServerRequest(QString request);
    void blinkReload();

    // app/kelvaclientmain_workbench.cpp
    void loadSettings();
    void saveWorkbench();
    void loadWorkbench();
    void resetSettings();
    void notAvailableYet();

    // documents/kelvaclientmain_list.cpp
    /// The refresh of the document list. docIds: classification ids to select instead of the present ones.
    void updateDocuments(QStringList docIds = {}, bool resetPlugins = false);
    void updateDocumentsClearPlugins();
    /// Does what waited for the gate: edits, a reload, a refresh.
    void catchUp();
    void doUpdateDocuments();
    void selChanged();
    void timerSelChanged();
    void docSelChanged(const QItemSelection &selection);
    void changeDocView();
    void updateTrash();

    // documents/kelvaclientmain_export.cpp
    void exportDocument();
    void showDocument();
    void documentDoubleClicked(const QModelIndex &index);

    // documents/kelvaclientmain_edit.cpp
    /// Notes what was entered into the current cell; it is written back once the table is done with it.
    void infoViewItemChanged();

    // documents/kelvaclientmain_drop.cpp
    /// Moves a document to a folder, or gives it the status of a status node. Does not refresh.
    void updateDocAfterDrop(const QString &docId, const QString &value);
    /// The same for several, which must be writable, with a date for a resubmission; then refreshes.
    void updateDocsAfterDrop(const QStringList &docIds, const QString &folder);

    // documents/kelvaclientmain_search.cpp
    void doSearch(bool special = false);
    void searchClicked();
    void doClearSearch(bool update = true);
    void searchComboChanged(int index, bool focus);
    void searchComboChanged(int index);
    void searchTextChanged();
    void doCheckSearch();

    // folders/kelvaclientmain_folders.cpp
    void subArchiveChanged(int index, bool reload = true);
    void moveToFolder();
    /// Asks for a new folder below parentOid and reloads the workplace with it.
    void doCreateFolder(QString parentOid);

    // search/kelvaclientmain_filters.cpp
    void resetFilters(bool reload = true, bool resetFolder = true);
    /// Searches by a stored filter of the tree; its groups clear the search.
    void filterActivated(const QModelIndex &index);
    void doEditFilters();

signals:
    void closed();
    void updatePluginData();

protected:
    bool event(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    // app/kelvaclientmain.cpp
    void setupPanels();
    void connectPanels();
    void writeApplicationInfo(const QString &name, const QString &version, const QString &build);
    void initProxy();
    bool loadClassificationPlugin();
    bool loadArchivePlugin();

    // app/kelvaclientmain_login.cpp
    bool doLogin();
    bool chooseProfile();
    bool reload(bool updateDocs);
    bool reloadWorkplace(bool updateDocs);
    bool takeProfile();
    bool enterOfflineArchive();
    bool doLoginWithoutDialog();
    bool connectToClassification();
    bool reportFailedConnection();
    void keepPassword(const QString &oldPassword, const QString &newPassword);
    bool changeExpiredPass(const QString &host, const QString &user, int port);
    void setLoginText(const QString &text);
    void startReloadBlink();
    void stopReloadBlink();

    // app/kelvaclientmain_workbench.cpp
    void loadToolBar();
    void applyRights();
    void applyOfflineMode();
    void fillContextMenus();
    void connectActions();
    void registerToolBars();
    void loadScreenSettings();
    void saveScreenSettings();

    // documents/kelvaclientmain_list.cpp
    DocumentQuery currentQuery() const;
    /// The refresh itself; afterEdit gives the table the focus back.
    void refreshList(const QStringList &docIds, bool resetPlugins, bool afterEdit);
    void refreshTable(const QStringList &docIds, bool resetPlugins, bool afterEdit);
    bool loadRows();
    void showCount();
    void updateFolderColumn();
    void restoreSelection(const QStringList &ids, const QString &currentId, int currentColumn);
    void disableDocumentActions();
    void showSelectedCount();
    QStringList getCurrentDocIds(bool onlyWritable, bool notDeleted) const;
    QStringList getCurrentRealDocIds(bool onlyWritable) const;
    void showDocView();

    // documents/kelvaclientmain_export.cpp
    /// Exports the selected documents, or opens them; index is the mode. Returns the files that are there
    /// now.
    QStringList doExportDocument(const QString &path, bool open, int index);

    // documents/kelvaclientmain_edit.cpp
    void infoViewItemChanged(QStandardItem *item);
    void saveEdit(const CellEdit &edit);
    RecordEditor recordEditor() const;
    /// The cycle of every edit, with the warning of a conflict.
    RecordEditor::Result editDocument(const QString &docId, const RecordEditor::Change &change);
    /// With a box for each failure and, with update, a refresh at the end.
    bool editDocument(const QString &docId, const RecordEditor::Change &change, const QString &readFailure,
                      const QString &saveFailure, bool update);
    bool checkIfChanged(const QString &version, const QString &docId);
    void updateBemerkung(const QString &docId, const QString &value);
    void updateStatus(const QString &docId, const QString &status, bool update = true);
    void updateDocFolder(const QString &id, const QString &folder, bool update = true);
    void updateMandant(const QString &docId, const QString &folder, bool update = true);
    void updateDocArt(const QString &docId, const QString &value);
    void updateDatum(const QString &docId, const QString &value);
    void updateFromColumn(const QString &value, int column, const QString &docId);
    bool classifyDropped(const QString &row, const QString &folder, const QString &date,
                         QProgressDialog &progress, QStringList &handled);
    bool askResubmissionDate(const QString &title, QString &date);
    QMap<QString, QString> getCurrentBemerkungen(bool onlyWritable) const;

    // documents/kelvaclientmain_search.cpp
    void setSearchActive(bool active);
    bool runSearch(bool special);
    bool searchExtended(bool special);
    void searchAnew(bool special);
    /// False, with a box, when fewer than three characters were typed.
    bool takeFullText(const QString &words, int typed);
    void showSearch();

    // folders/kelvaclientmain_folders.cpp
    bool initFolders();
    void showFolderTree(const WorkbenchData &workbench);
    void fillMoveMenu();
    QString getArchiveString() const;
    KelvaDelegate *getDelegateForColumn(int column) const;
    int getColumnIndex(const QString &name) const { return m_columnNames.indexOf(name); }
    void blockDelegateSignals(bool block);

    // search/kelvaclientmain_filters.cpp
    void initExtendedSearch();
    void initStatus();
    void loadFilters();

    ClassifyInterface *classifyClient = nullptr;
    kelvaArchiveClientInterface *archiveInterface = nullptr; ///< a factory
    KelvaDocTree *docTree;
    kelvastatusbarext *statusBarExt;
    KelvaTrashButton *m_trashButton = nullptr; ///< the status bar's
    KelvaArchiveWorker *archiveWorker;
    QtToolBarManager *toolBarManager;
    KelvaExtSearch *m_extSearch = nullptr; ///< from the first login on
    bool firstConnect = true;
    bool initialized = false;
    QString clientIdent; ///< composed for the service; nothing here reads it

    Session m_session;
    KelvaDocLogin *loginSplash = nullptr;
    QTimer *reloadBlinkTimer = nullptr;
    bool uiReady = false;
    bool reloadPending = false;

    QToolBar *m_settingsBar = nullptr;
    QAction *m_contextLink = nullptr;
    bool useHttpLinks = false;
    QString emailCommand;
    QLabel *m_selectedCount = nullptr;
    std::unique_ptr<WindowLayout> m_layout;

    DocumentQuery m_query; ///< but for what the status bar and the status list hold
    QMap<QString, QString> m_retentionByDocType;
    QStringList m_columnNames; ///< field keys in the order of the table's columns
    QMutex m_updateMutex;
    QMutex m_timerMutex;
    bool m_reloading = false;             ///< updateAll() is at work and lets events run
    bool m_changedWhileReloading = false; ///< somebody changed the vocabulary meanwhile
    bool m_connectionLost = false;
    RefreshGate *m_gate;                ///< a child of the window
    SearchCell *m_searchCell = nullptr; ///< a child of its table
    int selectTimerId = -1;

    QStringList m_searchColumns;
    std::unique_ptr<ColumnEditors> m_editors;
};
