#pragma once

// Helpers shared by the tests of the value classes' debug and stream forms.

#include <QDataStream>
#include <QDebug>
#include <QtTest>

#include <type_traits>
#include <utility>

/// The text QDebug writes for \a value.
template <typename T>
QString debugText(const T &value)
{
    QString text;
    QDebug(&text) << value;
    return text;
}

/// \a value as QDataStream writes it (big-endian, the default byte order).
template <typename T>
QByteArray bigEndian(const T &value)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::BigEndian);
    out << value;
    return bytes;
}

template <typename T, typename = void>
struct HasIsEmpty : std::false_type {};
template <typename T>
struct HasIsEmpty<T, std::void_t<decltype(std::declval<const T &>().isEmpty())>> : std::true_type {};

/// Checks the bytes of \a value against \a expected, reads them back over \a read (a stale value
/// that must be replaced), and makes sure that every shortened copy of the stream fails (leaving
/// a container empty).
template <typename T>
void checkStream(const T &value, const QByteArray &expected, T read = T())
{
    const QByteArray bytes = bigEndian(value);
    QCOMPARE(bytes.toHex(), expected.toHex());
    QDataStream in(bytes);
    in >> read;
    QCOMPARE(in.status(), QDataStream::Ok);
    QVERIFY(in.atEnd());
    QCOMPARE(read, value);
    for (int length = 0; length < bytes.size(); ++length) {
        QDataStream cut(bytes.left(length));
        T partial;
        cut >> partial;
        QVERIFY2(cut.status() != QDataStream::Ok, qPrintable(QString::number(length)));
        if constexpr (HasIsEmpty<T>::value)
            QVERIFY(partial.isEmpty());
    }
}
