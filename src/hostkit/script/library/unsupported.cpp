// Functions of the production host that this one does not have and that scripts must not believe to have worked.
#include <algorithm>

#include "hostkit/script/library/builtins.h"
#include "hostkit/script/machine/access.h"

namespace hostkit::script {
namespace {

template <std::size_t N>
struct Name {
  constexpr Name(const char16_t (&name)[N]) { std::copy_n(name, N, text); }  // NOLINT: made of literals
  char16_t text[N];
};

template <Name kName>
Value refuse(const Call&) {
  throwRuntimeError(std::u16string(kName.text) + u" is not supported by this host");
}

template <Name kName>
constexpr BuiltinEntry refused() {
  return {kName.text, 0, -1, refuse<kName>};
}

constexpr BuiltinEntry kEntries[] = {
    refused<u"render">(),          refused<u"saveMaxFile">(),
    refused<u"saveNodes">(),       refused<u"mergeMaxFile">(),
    refused<u"holdMaxFile">(),     refused<u"fetchMaxFile">(),
    refused<u"importFile">(),      refused<u"exportFile">(),
    refused<u"quitMAX">(),         refused<u"addModifier">(),
    refused<u"convertToMesh">(),   refused<u"convertToPoly">(),
    refused<u"delete">(),          refused<u"instance">(),
    refused<u"reference">(),       refused<u"snapshot">(),
    refused<u"cloneNodes">(),      refused<u"bitmap">(),
    refused<u"openBitmap">(),      refused<u"dotNetClass">(),
    refused<u"dotNetObject">(),    refused<u"dotNet.loadAssembly">(),
    refused<u"python.execute">(),  refused<u"python.executeFile">(),
    refused<u"createOLEObject">(), refused<u"registry.openKey">(),
};

}  // namespace

std::span<const BuiltinEntry> unsupportedBuiltins() { return kEntries; }

}  // namespace hostkit::script
