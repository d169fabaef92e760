// Objects of the host as scripts see them, made of tables: what they have, and what they can do.
#pragma once

#include <algorithm>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "hostkit/bindings/script_values.h"
#include "hostkit/script/machine/host_bindings.h"

namespace hostkit::bindings {

using Arguments = std::vector<script::HostValue>;

// Names in tables are spelled as they are shown; scripts may spell them in any case.
template <class Object>
struct Property {
  const char16_t* name;
  script::HostValue (*get)(Object&);
  void (*set)(Object&, const script::HostValue&) = nullptr;  // null: read-only
  bool (*applies)(const Object&) = nullptr;                  // null: to every object of the class
};

inline constexpr int kAnyCount = -1;

template <class Object>
struct Function {
  const char16_t* name;
  int count;  // of arguments; kAnyCount: the function looks at them itself
  script::HostValue (*call)(Object&, const Arguments&);
};

// `name` is in lower case, as names arrive from scripts. Null: the table has no such row.
template <class Row>
const Row* find(std::span<const Row> table, std::u16string_view name) {
  const auto found = std::find_if(table.begin(), table.end(), [&](const Row& row) { return isNamed(row.name, name); });
  return found != table.end() ? &*found : nullptr;
}

// The base of a class of objects, which has its tables as static functions:
//
//   class Layer : public TableObject<Layer> {
//    public:
//     static std::span<const Property<Layer>> properties();
//     static std::span<const Function<Layer>> functions();
//
// either of them only where there is something to list.
template <class Object, class Base = script::HostObject>
class TableObject : public Base {
 public:
  static std::span<const Property<Object>> properties() { return {}; }
  static std::span<const Function<Object>> functions() { return {}; }

  std::vector<std::u16string> propertyNames() const override {
    std::vector<std::u16string> names;
    for (const Property<Object>& row : Object::properties())
      if (applies(row)) names.emplace_back(row.name);
    return names;
  }
  std::vector<std::u16string> functionNames() const override {
    std::vector<std::u16string> names;
    for (const Function<Object>& row : Object::functions()) names.emplace_back(row.name);
    return names;
  }
  std::optional<script::HostValue> get(std::u16string_view name) override {
    const Property<Object>* row = property(name);
    if (!row) return std::nullopt;
    return row->get(self());
  }
  bool set(std::u16string_view name, const script::HostValue& value) override {
    const Property<Object>* row = property(name);
    if (!row || !row->set) return false;
    row->set(self(), value);
    return true;
  }
  std::optional<script::HostValue> call(std::u16string_view name, const Arguments& arguments,
                                        const script::HostKeywords&) override {
    const Function<Object>* row = find(Object::functions(), name);
    if (!row) return std::nullopt;
    if (row->count != kAnyCount && arguments.size() != static_cast<std::size_t>(row->count))
      refuseCount(row->name, row->count, arguments.size());
    return row->call(self(), arguments);
  }

 private:
  Object& self() { return static_cast<Object&>(*this); }
  bool applies(const Property<Object>& row) const {
    return !row.applies || row.applies(static_cast<const Object&>(*this));
  }
  const Property<Object>* property(std::u16string_view name) const {
    const Property<Object>* row = find(Object::properties(), name);
    return row && applies(*row) ? row : nullptr;
  }
};

}  // namespace hostkit::bindings
