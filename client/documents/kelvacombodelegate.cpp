#include "documents/kelvacombodelegate.h"

#include "server/recordformat.h"

#include <QPixmap>
#include <QWidget>

KelvaComboDelegate::KelvaComboDelegate(QStringList values, QList<QByteArray> pics, QObject *parent, bool,
                                       QIcon defaultIcon, bool commitOnActivate, bool closeOnChange)
    : KelvaDelegate(parent),
      m_values(std::move(values)),
      m_pics(std::move(pics)),
      m_defaultIcon(std::move(defaultIcon)),
      m_commitOnActivate(commitOnActivate),
      m_closeOnChange(closeOnChange)
{
    for (int i = 0; i < m_values.size(); ++i) {
        const QStringList fields = m_values.at(i).split(recordformat::fieldSeparator, Qt::KeepEmptyParts);
        m_entries.insert(fields.first(), fields);
        QPixmap picture;
        if (picture.loadFromData(m_pics.value(i)))
            m_icons.insert(fields.first(), QIcon(picture));
    }
}

KelvaDelegate *KelvaComboDelegate::clone(QWidget *parent) const
{
    auto *copy = new KelvaComboDelegate(m_values, m_pics, parent, false, m_defaultIcon, m_commitOnActivate,
                                        m_closeOnChange);
    copy->setDelegateColumn(delegateColumn);
    copy->setShowPopup(m_showPopup);
    return copy;
}

QString KelvaComboDelegate::getValue(const QString &display) const
{
    for (const QString &value : m_values) {
        const QStringList fields = value.split(recordformat::fieldSeparator, Qt::KeepEmptyParts);
        if (fields.value(fields.size() > 1 ? 1 : 0) == display)
            return fields.first();
    }
    return tr("not assigned");
}

QString KelvaComboDelegate::getData(const QString &key) const
{
    const auto entry = m_entries.constFind(key);
    if (entry == m_entries.constEnd())
        return tr("not assigned");
    return entry->value(entry->size() > 1 ? 1 : 0);
}

QString KelvaComboDelegate::getData(const QString &key, int field) const
{
    return m_entries.value(key).value(field);
}

QIcon KelvaComboDelegate::getIcon(const QString &key) const
{
    return m_icons.value(key, m_defaultIcon);
}
