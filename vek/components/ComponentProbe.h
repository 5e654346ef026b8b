#pragma once

// Choosing a component for a stream by probing: every candidate factory
// makes a fresh component, the stream is rewound to its start, and the
// component's `int Validate(CStream*)` scores it (0: cannot handle it; more:
// confidence). Container readers are chosen this way.
//
// Rules of the choice:
// - factories are asked in registration order;
// - only a score strictly greater than the best so far is kept (the best
//   starts at 0), so the earliest registered wins a tie and a score of 0 or
//   below (a failed Validate) never wins;
// - a kept score above ConclusiveScore ends the search at once;
// - every component not kept is released; the result is the kept one (one
//   reference for the caller) or null.
// A stream that cannot be rewound cannot be probed fairly: the first failed
// rewind ends the search with null and a log line.
#include <vek/components/CComponentInventory.h>
#include <vek/io/CStream.h>

#include <concepts>

namespace Quorvex::Vek {

template <typename Kind>
concept ProbedComponent = requires(Kind* component, CStream* stream) {
    { component->Validate(stream) } -> std::convertible_to<int>;
};

// A score above this is certain enough to stop asking further factories.
inline constexpr int ConclusiveScore = 255;

// Probes with the factories of `factories`, in list order.
template <ProbedComponent Kind>
Kind* ChooseByProbing(CList<CComponentFactory<Kind>>* factories, CStream* stream)
{
    if (!stream) {
        Log(LogLevel::Error, "ChooseByProbing: the stream is null\n");
        return nullptr;
    }
    RObject<Kind> best;
    int bestScore = 0;
    const int32_t count = factories ? factories->GetCount() : 0;
    for (int32_t i = 0; i < count && bestScore <= ConclusiveScore; ++i) {
        CComponentFactory<Kind>* factory = factories->Get(i);
        RObject<Kind> candidate(factory ? factory->CreateInstance() : nullptr);
        if (!candidate)
            continue;
        const int rewound = stream->Seek(0, CStream::Begin);
        if (rewound < 0) {
            Log(LogLevel::Error, "ChooseByProbing: rewinding the stream failed with %s\n", GetResultName(rewound));
            return nullptr;
        }
        const int score = candidate->Validate(stream);
        if (score > bestScore) {
            best = std::move(candidate);
            bestScore = score;
        }
    }
    return best.Detach();
}

// Probes with every factory registered in Kind's inventory.
template <ProbedComponent Kind>
Kind* ChooseByProbing(CStream* stream)
{
    RObject<CList<CComponentFactory<Kind>>> factories(CComponentInventory<CComponentFactory<Kind>>::GetFactories());
    if (!factories)
        return nullptr;
    return ChooseByProbing<Kind>(factories, stream);
}

} // namespace Quorvex::Vek
