// A stable merge sort that survives whatever the comparison does: scripts may write comparisons that contradict
// themselves, change the array, or fail half-way.
#pragma once

#include <vector>

#include "hostkit/script/machine/runtime.h"

namespace hostkit::script {

// Sorts items[from, to). `less` may throw; the array is then as it was.
template <class Less>
void mergeSort(Runtime& runtime, ArrayObject& array, std::size_t from, std::size_t to, const Less& less) {
  const Root kept(runtime.heap(), runtime.heap().make<ArrayObject>());
  auto& items = static_cast<ArrayObject*>(kept.value.o)->items;
  items.assign(array.items.begin() + static_cast<std::ptrdiff_t>(from),
               array.items.begin() + static_cast<std::ptrdiff_t>(to));
  std::vector<Value> merged(items.size());
  for (std::size_t width = 1; width < items.size(); width *= 2) {
    for (std::size_t left = 0; left < items.size(); left += 2 * width) {
      const std::size_t middle = std::min(left + width, items.size()), right = std::min(left + 2 * width, items.size());
      std::size_t a = left, b = middle;
      for (std::size_t out = left; out < right; ++out)
        merged[out] = b >= right || (a < middle && !less(items[b], items[a])) ? items[a++] : items[b++];
    }
    items.swap(merged);
  }
  if (to <= array.items.size())
    std::copy(items.begin(), items.end(), array.items.begin() + static_cast<std::ptrdiff_t>(from));
}

}  // namespace hostkit::script
