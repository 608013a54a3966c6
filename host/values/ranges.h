// Algorithms for whole ranges, as C++20 has them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace vndiscover::host {

template <class Range, class Condition>
bool AnyOf(const Range& range, Condition condition) {
    return std::any_of(std::begin(range), std::end(range), condition);
}

template <class Range, class Condition>
bool AllOf(const Range& range, Condition condition) {
    return std::all_of(std::begin(range), std::end(range), condition);
}

template <class Range, class Condition>
size_t CountIf(const Range& range, Condition condition) {
    return static_cast<size_t>(std::count_if(std::begin(range), std::end(range), condition));
}

// The first element that meets the condition; null if none does.
template <class Range, class Condition>
auto FindIf(Range& range, Condition condition) -> decltype(&*std::begin(range)) {
    const auto found = std::find_if(std::begin(range), std::end(range), condition);
    return found == std::end(range) ? nullptr : &*found;
}

template <class Range, class Value>
bool Contains(const Range& range, const Value& value) {
    return std::find(std::begin(range), std::end(range), value) != std::end(range);
}

// The index of the value, which is appended if there is none like it.
template <class Container, class Value>
size_t IndexOrAppend(Container& container, const Value& value) {
    const auto found = std::find(container.begin(), container.end(), value);
    const auto index = static_cast<size_t>(found - container.begin());
    if (found == container.end()) container.push_back(value);
    return index;
}

template <class Container, class Condition>
void EraseIf(Container& container, Condition condition) {
    container.erase(std::remove_if(container.begin(), container.end(), condition), container.end());
}

}  // namespace vndiscover::host
