// The containers that everything else stands on.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <vector>

#include "tools/Archive.h"
#include "tools/ElementArray.h"
#include "tools/Hash.h"
#include "tools/IoFile.h"
#include "tools/Memory.h"

class CBenchPointMethods : public CElementMethods {
    ZEL_DECLARE_CREATABLE(CBenchPointMethods)
public:
    CBenchPointMethods() { m_stored = {8, 16}; }
    unsigned int GetSizeof() const override { return 24; }
    unsigned int GetType() const override { return 1; }
    unsigned int GetBaseType() const override { return 1; }
    void ConstructElement(void* element) const override
    {
        std::fill_n(static_cast<unsigned char*>(element), 24, static_cast<unsigned char>(7));
    }
};
ZEL_IMPLEMENT_CREATABLE(CBenchPointMethods, CElementMethods)

namespace {

// Keys as meshes give them: ascending, and scattered ones. Watch: ns per item stays within the cost of a cache miss.
int Key(int i, bool scattered) { return scattered ? static_cast<int>(static_cast<unsigned int>(i) * 2654435761u) : i; }

void HashInsert(benchmark::State& state)
{
    const int count = static_cast<int>(state.range(0));
    for (auto _ : state) {
        CHashTable<int> table;
        for (int i = 0; i < count; i++)
            table.Insert(Key(i, state.range(1)));
        benchmark::DoNotOptimize(table.GetCount());
    }
    state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(HashInsert)->ArgsProduct({{1000, 10000, 100000, 1000000}, {0, 1}});

void HashFind(benchmark::State& state)
{
    const int count = static_cast<int>(state.range(0));
    CHashMap<int, int> map;
    for (int i = 0; i < count; i++)
        map.Insert(Key(i, state.range(1)), i);
    long long sum = 0;
    for (auto _ : state) {
        sum = 0;
        for (int i = 0; i < count; i++)
            sum += *map.Find(Key(i, state.range(1)));
        benchmark::DoNotOptimize(sum);
    }
    if (sum != static_cast<long long>(count) * (count - 1) / 2)
        state.SkipWithError("each key has its value");
    state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(HashFind)->ArgsProduct({{1000, 10000, 100000, 1000000}, {0, 1}});

// Elements with a table, of which 16 of 24 bytes are stored. Watch: close to the speed of copying memory.
void ArrayThroughAnArchive(benchmark::State& state)
{
    CBenchPointMethods* const methods = new CBenchPointMethods;
    CElementArray array(methods);
    DeleteMe(methods);
    array.SetSize(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        CCustomMemFile file;
        CXArchive out(&file, CXArchive::STORE);
        array.Serialize(out);
        out.Close();
        CElementArray read;
        file.OpenFile({}, 1, nullptr);
        CXArchive in(&file, CXArchive::LOAD);
        read.Serialize(in);
        if (read.GetSize() != array.GetSize())
            state.SkipWithError("all elements come back");
    }
    state.SetBytesProcessed(state.iterations() * state.range(0) * 16);
}
BENCHMARK(ArrayThroughAnArchive)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMicrosecond);

// A raw block and single numbers. Watch: numbers at a few ns each.
void ArchiveNumbers(benchmark::State& state)
{
    std::vector<int> numbers(1000000, 5);
    const bool block = state.range(0) != 0;
    for (auto _ : state) {
        CCustomMemFile file;
        CXArchive out(&file, CXArchive::STORE);
        if (block)
            out.MoveNumbers(numbers.data(), numbers.size());
        else
            for (const int number : numbers)
                out << number;
        out.Close();
        file.OpenFile({}, 1, nullptr);
        CXArchive in(&file, CXArchive::LOAD);
        if (block)
            in.MoveNumbers(numbers.data(), numbers.size());
        else
            for (int& number : numbers)
                in >> number;
    }
    if (numbers.back() != 5)
        state.SkipWithError("what went in comes out");
    state.SetBytesProcessed(state.iterations() * static_cast<long long>(numbers.size() * sizeof(int)));
}
BENCHMARK(ArchiveNumbers)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

// One size at once, and growth by one; with blocks kept for reuse and without. Watch: growth within a few times of the size
// at once.
void ArraySetSize(benchmark::State& state)
{
    const int size = static_cast<int>(state.range(0));
    const bool grow = state.range(1) != 0, trim = state.range(2) != 0;
    CBenchPointMethods* const methods = new CBenchPointMethods;
    for (auto _ : state) {
        CElementArray array(methods);
        if (grow)
            for (int i = 1; i <= size; i++)
                array.SetSize(i);
        else
            array.SetSize(size);
        benchmark::DoNotOptimize(array.GetBase());
        array.RemoveAll();
        if (trim)
            XTrimBlocks();
    }
    DeleteMe(methods);
    state.SetItemsProcessed(state.iterations() * size);
}
BENCHMARK(ArraySetSize)->ArgsProduct({{10000, 1000000, 5000000}, {0, 1}, {0, 1}})->Unit(benchmark::kMicrosecond);

}
