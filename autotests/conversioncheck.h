#pragma once

// A helper shared by the tests of the number conversions that report success through a flag.

#include <QStringList>

/// Collects the answers of several conversions of one input as one text: each answer is its
/// result, or "-" for a refusal, which must also answer 0. The flag starts opposite to the
/// expected answer, so a conversion that leaves it untouched shows.
class CConversionResults
{
public:
    explicit CConversionResults(const QString &expected) : m_want(expected.split(QLatin1Char(' '))) {}

    /// \a conversion takes the flag and answers its result as text.
    template <class Conversion>
    void add(Conversion conversion)
    {
        bool ok = m_want.value(m_got.size()) == QLatin1String("-");
        const QString result = conversion(&ok);
        m_got << (ok ? result : result == QLatin1String("0") ? QStringLiteral("-") : QStringLiteral("refused, yet ") + result);
    }

    QString text() const { return m_got.join(QLatin1Char(' ')); }

private:
    QStringList m_want;
    QStringList m_got;
};
