// checkAndRun: the checks, then the main term applied to the address of the
// program's arguments, reduced, and the result judged.
#include "checks/run.h"

#include <string>

#include "checks/check.h"
#include "runtime/globals.h"
#include "numbers/model.h"
#include "reduction/machine.h"
#include "reduction/printer.h"

namespace tarn {

namespace {

// The outcome of a run, in this order: a blob is a cycle; a "]" application
// carries a report out of a failed run-time compilation; an integer is the
// result; anything else is out of range. The machine's markers (")name",
// "]name") are no blobs and no applications: they print in the range report.
Report judge(Term result) {
  Report report;
  if (result.isLeaf() && result.first() == '(') {
    std::string t(textOf(result).substr(1));
    report.say = "Cycle detected on function " + t + ".";
    report.tag = "cycle";
    report.vip = excerpt(t);
    return report;
  }
  if (result.isApp() && result.left().isLeaf() && result.left().first() == ']')
    return reportFromText(textOf(result.right()));
  if (isHostInteger(result)) {
    setGlobal("", std::move(result));
    return report;
  }
  std::string printed = printTerm(result);
  report.say = "The program must return an integer. Instead we encountered:\n" + printed;
  report.tag = "range";
  report.tip = excerpt(printed);
  return report;
}

}  // namespace

Report checkAndRun(int64_t argsAddress) {
  Report report = checkProgram();
  if (!report.ok()) return report;
  // The main term takes exactly one argument: the address as an integer.
  Term args = int64ToTerm(argsAddress);
  if (!findGlobal("")) setGlobal("", emptyLeaf());
  Term main = *findGlobal("");
  return judge(reduce(App(std::move(main), std::move(args))));
}

}  // namespace tarn
