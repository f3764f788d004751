#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "scene/Materials.h"

namespace {

constexpr unsigned int FRESH = 0xFFFFFFFF;

/// Materials "m0", "m1"... of as many colours as there are, each with an image of its own.
std::unique_ptr<CMaterials> CreateMaterials(int count, bool oneColor)
{
    auto materials = std::make_unique<CMaterials>();
    for (int i = 0; i < count; i++) {
        C3DMaterial* const material = materials->CreateNewMaterial(FRESH);
        material->SetName(L"m" + std::to_wstring(i));
        if (!oneColor)
            material->SetDiffuseColor(0, CRGBColor(i & 0xFF, i >> 8 & 0xFF, i >> 16 & 0xFF));
        material->AddMaterialMap(std::to_wstring(i) + L".png", 1, MAP_DIFFUSE, PROJECTION_UVW);
    }
    return materials;
}

std::vector<C3DMaterial*> All(const CMaterials& materials)
{
    std::vector<C3DMaterial*> all;
    for (unsigned int pos = materials.GetFirst(); pos != HASH_END;) {
        unsigned int id;
        materials.GetNext(pos, id, all.emplace_back());
    }
    return all;
}

/// Looks one material up at a time, in an order that no cache follows.
template <class FIND> void LookUp(benchmark::State& state, bool oneColor, FIND find)
{
    const auto materials = CreateMaterials(static_cast<int>(state.range(0)), oneColor);
    const auto all = All(*materials);
    std::size_t at = 0;
    bool right = true;
    for (auto _ : state) {
        at = (at + 7919) % all.size();
        right &= find(*materials, *all[at]) == all[at];
    }
    if (!right)
        state.SkipWithError("the material itself has to be found");
}

}

// Watch: a look-up costs the same among 1,000 and among 100,000, but for misses of the cache.
static void FindByID(benchmark::State& state)
{
    LookUp(state, false, [](CMaterials& all, const C3DMaterial& one) { return all.FindByID(one.GetMaterialID()); });
}
BENCHMARK(FindByID)->Arg(1000)->Arg(100000);

static void FindByName(benchmark::State& state)
{
    LookUp(state, false, [](CMaterials& all, const C3DMaterial& one) { return all.FindByName(one.GetName()); });
}
BENCHMARK(FindByName)->Arg(1000)->Arg(100000);

static void FindByParameters(benchmark::State& state)
{
    LookUp(state, false, [](CMaterials& all, const C3DMaterial& one) { return all.Find(one, false); });
}
BENCHMARK(FindByParameters)->Arg(1000)->Arg(100000);

static void FindInACrowdOfOneColor(benchmark::State& state)
{
    LookUp(state, true, [](CMaterials& all, const C3DMaterial& one) { return all.Find(one, false); });
}
BENCHMARK(FindInACrowdOfOneColor)->Arg(1000)->Arg(100000);

// Watch: items a second hold over the sizes.
static void Create(benchmark::State& state)
{
    for (auto _ : state)
        CreateMaterials(static_cast<int>(state.range(0)), false);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(Create)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

// All want one name and get numbers: "", "0", "1"...
static void CreateUnderOneName(benchmark::State& state)
{
    for (auto _ : state) {
        CMaterials materials;
        for (int i = 0; i < state.range(0); i++)
            materials.CreateNewMaterial(FRESH);
        if (!materials.FindByName(std::to_wstring(state.range(0) - 2)))
            state.SkipWithError("the last number is missing");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(CreateUnderOneName)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

// One number after the other is given up and taken again.
static void RenameAndCreate(benchmark::State& state)
{
    const int count = static_cast<int>(state.range(0));
    for (auto _ : state) {
        CMaterials materials;
        for (int i = 0; i < count; i++)
            materials.CreateNewMaterial(FRESH);
        for (int i = 0; i < count - 1; i++) {
            materials.FindByName(std::to_wstring(i))->SetName(L"m" + std::to_wstring(i));
            materials.CreateNewMaterial(FRESH);
        }
    }
    state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(RenameAndCreate)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);
