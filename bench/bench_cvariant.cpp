// Parsing and formatting of value texts, the work done for every value of a dictionary or
// parameter file that is read or written.
#include "CVariant.h"

#include <benchmark/benchmark.h>

#include <QPair>
#include <QRandomGenerator>
#include <QVector>

namespace {

using Sample = QPair<QString, NTypes::eTypes_t>;

/// 1000 value texts of a realistic mix: mostly integers, some floats, texts, byte strings and pairs.
QVector<Sample> makeSamples()
{
    QRandomGenerator random(42);
    QVector<Sample> samples;
    samples.reserve(1000);
    for (int i = 0; i < 1000; ++i) {
        const quint32 r = random.generate();
        switch (i % 10) {
        case 0:
        case 1:
            samples.append({QString::number(r & 0xFFFF), NTypes::E_U16});
            break;
        case 2:
            samples.append({QString::number(qint32(r)), NTypes::E_I32});
            break;
        case 3:
            samples.append({QStringLiteral("0x") + QString::number(r, 16).toUpper(), NTypes::E_U32});
            break;
        case 4:
            samples.append({QString::number(r % 2), NTypes::E_BOOL});
            break;
        case 5:
            samples.append({QString::number(double(r) / 1000.0, 'g', 9), NTypes::E_F32});
            break;
        case 6:
            samples.append({QString::number(double(qint32(r)) * 1e-7, 'g', 17), NTypes::E_F64});
            break;
        case 7:
            samples.append({QStringLiteral("Parameter %1").arg(r % 5000), NTypes::E_VSTRING});
            break;
        case 8:
            samples.append({QString::fromLatin1(QByteArray::number(r, 16).rightJustified(8, '0') + "00ff"), NTypes::E_OCTETS});
            break;
        default:
            samples.append({QStringLiteral("%1;%2").arg(qint32(r) / 7).arg(-qint32(r % 100000)), NTypes::E_XY});
            break;
        }
    }
    return samples;
}

void BM_ParseText(benchmark::State &state)
{
    const QVector<Sample> samples = makeSamples();
    for (auto _ : state) {
        for (const Sample &s : samples) {
            CVariant value(s.first, s.second);
            benchmark::DoNotOptimize(value);
        }
    }
    state.SetItemsProcessed(state.iterations() * samples.size());
}
BENCHMARK(BM_ParseText);

void BM_FormatText(benchmark::State &state)
{
    QVector<CVariant> values;
    for (const Sample &s : makeSamples())
        values.append(CVariant(s.first, s.second));
    for (auto _ : state) {
        for (const CVariant &v : values) {
            QString text = v.toStr();
            benchmark::DoNotOptimize(text);
        }
    }
    state.SetItemsProcessed(state.iterations() * values.size());
}
BENCHMARK(BM_FormatText);

void BM_TextRoundTrip(benchmark::State &state)
{
    const QVector<Sample> samples = makeSamples();
    for (auto _ : state) {
        int equal = 0;
        for (const Sample &s : samples) {
            const CVariant value(s.first, s.second);
            equal += CVariant(value.toStr(), s.second) == value;
        }
        benchmark::DoNotOptimize(equal);
    }
    state.SetItemsProcessed(state.iterations() * samples.size());
}
BENCHMARK(BM_TextRoundTrip);

} // namespace

BENCHMARK_MAIN();
