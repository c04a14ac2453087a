#pragma once

#include <QDataStream>
#include <QIODevice>
#include <QList>

/// Reads a list as QDataStream writes it, but trusts no count: one that the rest of the device cannot hold
/// fails the stream instead of reserving gigabytes. Every element type read here takes at least 4 bytes.
template<typename List, typename ReadElement>
void readBounded(QDataStream &stream, List &list, ReadElement readElement)
{
    list.clear();
    quint32 count = 0;
    stream >> count;
    if (stream.status() == QDataStream::Ok && qint64(count) > stream.device()->bytesAvailable() / 4)
        stream.setStatus(QDataStream::ReadCorruptData);
    for (quint32 i = 0; i < count && stream.status() == QDataStream::Ok; ++i) {
        typename List::value_type element;
        readElement(stream, element);
        list.append(element);
    }
    if (stream.status() != QDataStream::Ok)
        list.clear();
}

template<typename List>
void readBounded(QDataStream &stream, List &list)
{
    readBounded(stream, list, [](QDataStream &from, typename List::value_type &element) { from >> element; });
}
