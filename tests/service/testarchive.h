#pragma once

#include "service/archive.h"
#include "service/session.h"

#include <QTemporaryDir>

#include <memory>

/// A fresh archive with the administrator "admin" ("secret") and a small tree:
/// 1 Office (1.1 Invoices, 1.2 Letters (1.2.1 Old)), 2 Board (only the role "board"), 2.1 Minutes.
class TestArchive
{
public:
    TestArchive();

    const QString &path() const { return m_path; }
    std::unique_ptr<kelva::Session> owner() const;
    std::unique_ptr<kelva::Session> login(const QString &user = "admin",
                                          const QString &password = "secret") const;
    /// A user with the password "secret" and these roles beside his own.
    void addUser(const QString &login, const QStringList &roles);
    /// Returns the classification id.
    qint64 addDocument(const QString &description, const QString &folder,
                       const QString &date = QStringLiteral("2020-02-03"));

private:
    QTemporaryDir m_directory;
    QString m_path;
    std::unique_ptr<kelva::Session> m_owner;
};

/// Descriptions of a list's rows without the header, in their order.
QStringList descriptionsOf(const QStringList &list);
QString textOf(const kelva::Result<void> &result);
