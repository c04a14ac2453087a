#include "documents/kelvacombodelegate.h"

#include "contract/recordformat.h"
#include "documents/celldata.h"
#include "documents/valuecombobox.h"
#include "widgets/itemroles.h"
#include "widgets/recordpicture.h"
#include "widgets/searchtexts.h"

#include <QPixmap>

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
        const QPixmap picture = recordPicture(m_pics.value(i));
        if (!picture.isNull())
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
        if (recordformat::secondOrOnly(fields) == display)
            return fields.first();
    }
    return searchtext::notAssigned();
}

QString KelvaComboDelegate::getData(const QString &key) const
{
    const auto entry = m_entries.constFind(key);
    if (entry == m_entries.constEnd())
        return searchtext::notAssigned();
    return recordformat::secondOrOnly(*entry);
}

QString KelvaComboDelegate::getData(const QString &key, int field) const
{
    return m_entries.value(key).value(field);
}

QIcon KelvaComboDelegate::getIcon(const QString &key) const
{
    return m_icons.value(key, m_defaultIcon);
}

QWidget *KelvaComboDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                                          const QModelIndex &index) const
{
    if (!serves(index))
        return KelvaDelegate::createEditor(parent, option, index);
    auto *box = new ValueComboBox(parent, m_showPopup);
    for (const QString &value : m_values) {
        const QStringList fields = value.split(recordformat::fieldSeparator, Qt::KeepEmptyParts);
        // Plain values may be taken away again, keys always mean something.
        if (fields.size() == 1 && box->count() == 0)
            box->addItem(QString(), QString());
        const QString &key = fields.first();
        box->addItem(getIcon(key), recordformat::secondOrOnly(fields), key);
    }
    box->setCurrentIndex(-1);
    connect(box, SIGNAL(givenUp()), this, SLOT(doGiveUp()));
    if (m_commitOnActivate)
        connect(box, SIGNAL(activated(int)), this, SLOT(emitCommitData()));
    if (m_closeOnChange)
        connect(box, SIGNAL(currentIndexChanged(int)), this, SLOT(doCloseEditor()));
    return box;
}

void KelvaComboDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    auto *box = qobject_cast<ValueComboBox *>(editor);
    if (!box) {
        KelvaDelegate::setEditorData(editor, index);
        return;
    }
    const QString text = index.data(Qt::DisplayRole).toString();
    const QVariant raw = index.data(itemrole::rawValue);
    const QString key = raw.isValid() ? raw.toString() : getValue(text);
    box->startWith(box->findData(key, Qt::UserRole, Qt::MatchExactly | Qt::MatchCaseSensitive), text);
}

void KelvaComboDelegate::setModelData(QWidget *editor, QAbstractItemModel *model,
                                      const QModelIndex &index) const
{
    const auto *box = qobject_cast<ValueComboBox *>(editor);
    if (!box)
        KelvaDelegate::setModelData(editor, model, index);
    else if (box->isChosen())
        setCellValue(model, index, box->currentText(), box->itemIcon(box->currentIndex()),
                     box->currentData().toString());
}
