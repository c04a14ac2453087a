#pragma once

#include <QIcon>
#include <QList>
#include <QObject>

/// One folder of an imported structure, before it becomes part of a tree. Neither owns nor deletes its
/// children: whoever imports deletes them all.
class kelvaFolder final : public QObject
{
    Q_OBJECT

public:
    explicit kelvaFolder(QObject *parent = nullptr) : QObject(parent) {}

    void setName(const QString &name) { m_name = name; }
    void setKey(const QString &key) { m_key = key; }
    void setBuzzWords(const QString &buzzWords) { m_buzzWords = buzzWords; }
    void setIcon(const QIcon &icon) { m_icon = icon; }
    QString getName() const { return m_name; }
    QString getKey() const { return m_key; }
    QString getBuzzWords() const { return m_buzzWords; }
    QIcon getIcon() const { return m_icon; }
    QList<kelvaFolder *> getChilds() const { return m_childs; }
    void addChild(kelvaFolder *child) { m_childs.append(child); }

private:
    QString m_name;
    QString m_key;
    QString m_buzzWords;
    QIcon m_icon;
    QList<kelvaFolder *> m_childs;
};
