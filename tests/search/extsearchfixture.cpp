#include "search/extsearchfixture.h"

#include "contract/recordformat.h"
#include "documents/kelvacalendardelegate.h"
#include "documents/kelvacheckboxdelegate.h"
#include "documents/kelvacombodelegate.h"
#include "documents/kelvalinedelegate.h"
#include "documents/kelvasimplecombodelegate.h"
#include "folders/kelvaviewdelegate.h"
#include "widgets/itemroles.h"

ExtSearchFixture::ExtSearchFixture(bool offline)
    : tree("Folders", true, QString(), QString(), nullptr),
      dialog(std::make_unique<KelvaExtSearch>(offline, nullptr))
{
    const QChar f = recordformat::fieldSeparator;
    auto *parent = dialog.get();
    dialog->setDelegates(
        {nullptr,
         new KelvaComboDelegate(
             {QString("1") + f + "open", QString("2") + f + "waiting", QString("3") + f + "done"}, {}, parent,
             false, QIcon(), true, true),
         new KelvaSimpleComboDelegate({"", "small", "large"}, parent, true, true, false, true),
         new KelvaLineDelegate({}, parent, 254, false), new KelvaLineDelegate({}, parent, 254, true),
         new KelvaViewDelegate(&tree, parent), new KelvaCheckBoxDelegate(false, parent),
         new KelvaCalendarDelegate(parent, false, false, false)});
    QStringList fields;
    for (const auto &[title, key] : {std::pair{"Id", "docid"},
                                     {"Status", "status"},
                                     {"Kind", "attr4"},
                                     {"Description", "bemerkung"},
                                     {"Amount", "attr1"},
                                     {"Folder", "folder"},
                                     {"Paid", "attr2"},
                                     {"Date", "defdate"},
                                     {"full text", "full text"}})
        fields << QString(title) + f + key;
    dialog->setFilters(fields);
    dialog->show();
}

void ExtSearchFixture::connectClient()
{
    client.connectClient("localhost", 4711, "anna", "secret");
    dialog->setClassifyClient(&client);
}

QComboBox *ExtSearchFixture::editor(int row, int column) const
{
    return qobject_cast<QComboBox *>(table()->indexWidget(table()->model()->index(row, column)));
}

bool ExtSearchFixture::choose(int row, int column, const QString &choice)
{
    QComboBox *box = editor(row, column);
    const int entry = box ? box->findText(choice) : -1;
    if (entry < 0)
        return false;
    box->setCurrentIndex(entry);
    emit box->activated(entry);
    return true;
}

QToolButton *ExtSearchFixture::button(int row, int column) const
{
    return qobject_cast<QToolButton *>(table()->cellWidget(row, column));
}

void ExtSearchFixture::fill(const QString &field, const QString &op, const QString &value,
                            const QString &stored)
{
    const int row = table()->rowCount() - 1;
    choose(row, 0, field);
    choose(row, 1, op);
    table()->item(row, 2)->setText(value);
    if (!stored.isEmpty())
        table()->item(row, 2)->setData(itemrole::rawValue, stored);
}

QString ExtSearchFixture::rows() const
{
    QStringList lines;
    for (int row = 0; row < table()->rowCount(); ++row)
        lines << text(row, 0) + '/' + text(row, 1) + '/' + text(row, 2);
    return lines.join('\n');
}
