#include "hostkit/script/library/builtins.h"
#include "hostkit/script/machine/access.h"
#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/printing.h"

namespace hostkit::script {
namespace {

DictionaryObject& dictionary(const Call& call) {
  auto* found = as<DictionaryObject>(call[0]);
  if (!found) throwUnableToConvert(printed(call.runtime, call[0]), u"Dictionary");
  return *found;
}

Value hasKey(const Call& call) { return Value::ofBoolean(dictionary(call).find(call[1]) != nullptr); }
Value getValue(const Call& call) {
  dictionary(call);
  return getElement(call.runtime, call[0], call[1]);
}
Value setValue(const Call& call) {
  dictionary(call);
  setElement(call.runtime, call[0], call[1], call[2]);
  return call[2];
}
Value removeValue(const Call& call) { return Value::ofBoolean(dictionary(call).remove(call[1])); }

constexpr BuiltinEntry kEntries[] = {
    {u"hasDictValue", 2, 2, hasKey},
    {u"getDictValue", 2, 2, getValue},
    {u"setDictValue", 3, 3, setValue},
    {u"removeDictValue", 2, 2, removeValue},
};

}  // namespace

std::span<const BuiltinEntry> dictionaryBuiltins() { return kEntries; }

}  // namespace hostkit::script
