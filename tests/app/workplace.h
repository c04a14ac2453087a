#pragma once

#include "fakes/fakearchive.h"
#include "support/fakemanager.h"
#include "support/workbenchfixture.h"

#include "app/kelvaclientmain.h"
#include "contract/recordformat.h"
#include "documents/kelvainfoview.h"

#include <QApplication>
#include <QDockWidget>
#include <QSettings>
#include <QStatusBar>
#include <QTimer>

#include <memory>

/// A window against the fake archive, driven through what a user sees of it.
class Workplace
{
public:
    static constexpr char organization[] = "Norbant GmbH";
    static constexpr char application[] = "kelvaclient";

    /// A fresh fake archive, and no settings yet.
    static void prepare()
    {
        QCoreApplication::setOrganizationName(organization);
        QCoreApplication::setApplicationName(application);
        FakeArchive::instance().reset();
        QSettings(organization, application).clear();
    }
    static QSettings settings() { return QSettings(organization, application); }

    Workplace()
        : block("kelva_anna_localhost_47117", WorkbenchFixture::block(WorkbenchFixture::vocabulary())),
          window(std::make_unique<KelvaClientMain>())
    {
        if (!block.isReady())
            qFatal("The data block could not be laid down.");
        const QString entry = QString("Main archive") + recordformat::fieldSeparator + "1";
        manager.listAnswer = FakeManager::profileList({FakeManager::profileRecord(7, "Office", entry)});
    }
    ~Workplace() { end(); }

    /// Runs init() inside the event loop, as the program does: it may quit it.
    bool start()
    {
        bool result = false;
        QTimer::singleShot(0, window.get(), [this, &result] {
            result = window->init();
            QCoreApplication::quit();
        });
        QCoreApplication::exec();
        return result;
    }

    /// What was entered is saved or searched for once the editor is done with it.
    static void settle() { QCoreApplication::processEvents(); }

    void end()
    {
        window.reset();
        // The window quits the program when it dies; a short run takes that back for the next one.
        QTimer::singleShot(0, qApp, [] { QCoreApplication::quit(); });
        QCoreApplication::exec();
    }

    QAction *action(const QString &name) const { return window->findChild<QAction *>(name); }
    QDockWidget *dock(const QString &name) const { return window->findChild<QDockWidget *>(name); }
    KelvaInfoView *table() const { return window->findChild<KelvaInfoView *>("m_infoView"); }
    QString message() const { return window->findChild<QStatusBar *>("m_statusBar")->currentMessage(); }
    QStringList column(int number) const
    {
        QStringList texts;
        for (int i = 0; i < table()->model()->rowCount(); ++i)
            texts << table()->model()->index(i, number).data().toString();
        return texts;
    }

    FakeManager manager;
    WorkbenchFixture block;
    std::unique_ptr<KelvaClientMain> window;
};
