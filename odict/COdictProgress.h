#pragma once

#include <QtGlobal>

#include <functional>

/// Receives the progress of a long operation: \a done of \a total units (bytes read when
/// loading, objects written when saving, objects written per file section when exporting). Called from the
/// operation's own thread; \a done reaches \a total when the work is complete.
using COdictProgressCallback = std::function<void(qint64 done, qint64 total)>;

/// Passes progress on to a callback cheaply: only when about 1 % of the work has been done since
/// the last call, so a caller may report after every element.
class COdictProgressMeter
{
public:
    /// \a callback may be empty (then nothing is reported); \a total is the amount of work.
    COdictProgressMeter(const COdictProgressCallback &callback, qint64 total)
        : m_callback(callback), m_total(total), m_step(qMax<qint64>(1, total / 100)), m_next(0)
    {
    }

    /// Reports \a done when it has passed the next step.
    void update(qint64 done)
    {
        if (!m_callback || done < m_next)
            return;
        m_next = done + m_step;
        m_callback(done, m_total);
    }

    /// Reports the end of the work.
    void finish()
    {
        if (m_callback)
            m_callback(m_total, m_total);
    }

private:
    COdictProgressCallback m_callback;
    qint64 m_total;
    qint64 m_step;
    qint64 m_next;
};
