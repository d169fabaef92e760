// Is the script runtime as fast as scripting languages that people know? The same work in ours, in Debian's python3 and
// in lua5.4, each told to measure itself, so that starting a process does not count.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <string>

#include "bench/report.h"
#include "hostkit/script/engine/engine.h"
#include "hostkit/script/syntax/text.h"

namespace {

using namespace hostkit::script;

struct Work {
  std::string name;
  std::u16string ours;
  std::string python, lua;
};

const Work kWorks[] = {
    {"recursive Fibonacci", u"fn fib n = if n < 2 then n else fib (n - 1) + fib (n - 2)\nfib 27",
     "def fib(n):\n  return n if n < 2 else fib(n - 1) + fib(n - 2)\ndef work():\n  return fib(27)\n",
     "local function fib(n) if n < 2 then return n else return fib(n - 1) + fib(n - 2) end end\nfunction work() return "
     "fib(27) end\n"},
    {"string building",
     u"fn work = ( local n = 0; for r = 1 to 300 do ( local s = \"\"; for i = 1 to 1000 do s += (i as string) + \",\"; "
     u"n += s.count ); n )\nwork()",
     "def work():\n  n = 0\n  for r in range(300):\n    s = ''\n    for i in range(1, 1001): s += str(i) + ','\n    n "
     "+= len(s)\n  return n\n",
     "function work() local n = 0; for r = 1, 300 do local s = ''; for i = 1, 1000 do s = s .. (tostring(i) .. ',') "
     "end; n = n + #s end; return n end\n"},
    {"array sorting",
     u"fn work = ( local a = #(), x = 1; for i = 1 to 200000 do ( x = (x * 75 + 74) - ((x * 75 + 74) / 65537) * 65537; "
     u"append a x ); sort a; a[1000] )\nwork()",
     "def work():\n  a = []\n  x = 1\n  for i in range(200000):\n    x = (x * 75 + 74) % 65537\n    a.append(x)\n  "
     "a.sort()\n  return a[999]\n",
     "function work() local a, x = {}, 1; for i = 1, 200000 do x = (x * 75 + 74) % 65537; a[#a + 1] = x end; "
     "table.sort(a); return a[1000] end\n"},
    {"nested numeric loop",
     u"fn work = ( local s = 0.0; for i = 1 to 1500 do for j = 1 to 1500 do ( if i > j do s = s + 0.5; s = s + 1.5 ); "
     u"s )\nwork()",
     "def work():\n  s = 0.0\n  for i in range(1, 1501):\n    for j in range(1, 1501):\n      if i > j: s = s + 0.5\n  "
     "    s = s + 1.5\n  return s\n",
     "function work() local s = 0.0; for i = 1, 1500 do for j = 1, 1500 do if i > j then s = s + 0.5 end; s = s + 1.5 "
     "end end; return s end\n"},
};
constexpr int kRounds = 5;

double ownTime(const Work& work) {
  class Host : public HostBindings {
    std::optional<HostValue> get(std::u16string_view) override { return std::nullopt; }
  } host;
  double best = 1e9;
  for (int round = 0; round < kRounds; ++round) {
    Engine engine(host, {});
    const auto start = std::chrono::steady_clock::now();
    const RunResult result = engine.runText(work.ours);
    const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
    if (!result.succeeded) {
      std::cerr << hostkit::toUtf8(result.errorText);
      std::exit(1);
    }
    best = std::min(best, taken.count());
  }
  return best;
}

// Milliseconds as the peer's own clock tells them; nullopt when the peer is not installed.
std::optional<double> peerTime(const std::string& program, const std::string& script) {
  const auto folder = std::filesystem::temp_directory_path();
  const std::string source = (folder / "bench_maxscript_peer").string(), output = source + ".out";
  std::ofstream(source) << script;
  const int status = std::system((program + " " + source + " > " + output + " 2>&1").c_str());
  double milliseconds = 0;
  const bool read = static_cast<bool>(std::ifstream(output) >> milliseconds);
  std::filesystem::remove(source);
  std::filesystem::remove(output);
  if (status != 0 || !read) return std::nullopt;
  return milliseconds;
}

std::string pythonScript(const Work& work) {
  return "import time\n" + work.python + "best = 1e9\nfor r in range(" + std::to_string(kRounds) +
         "):\n  t = time.perf_counter()\n  work()\n  best = min(best, (time.perf_counter() - t) * 1000)\nprint(best)\n";
}
std::string luaScript(const Work& work) {
  return work.lua + "local best = 1e9\nfor r = 1, " + std::to_string(kRounds) +
         " do local t = os.clock(); work(); best = math.min(best, (os.clock() - t) * 1000) end\nprint(best)\n";
}

}  // namespace

int main() {
  struct Peer {
    const char *program, *name, *package;
    double goal;
    std::string (*script)(const Work&);
  };
  const Peer peers[] = {{"/usr/bin/python3", "python3", "python3", 1.0, pythonScript},
                        {"/usr/bin/lua5.4", "lua5.4", "lua5.4", 3.0, luaScript}};
  for (const Work& work : kWorks) {
    const double ours = ownTime(work);
    for (const Peer& peer : peers) {
      const auto theirs = peerTime(peer.program, peer.script(work));
      if (theirs) {
        bench::reportAtMost({"script, " + work.name + " against " + peer.name, ours, *theirs, "ms"}, peer.goal);
      } else {
        std::cout << "script, " << work.name << ": " << peer.name << " is missing (apt-get install " << peer.package
                  << ")\n";
      }
    }
  }
}
