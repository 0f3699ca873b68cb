// The classes of cost items as an account has them: which ones lie above a cost item, or above a class.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "workbench/presentation/result_table.h"

namespace quillon::workbench {

struct CostItemClass {
  std::string code;
  std::string name;
};

class CostItemClasses {
 public:
  // Reads the account's classes and cost items; no cursor of the account may be open. Throws tsql::SqlError.
  explicit CostItemClasses(const ResultTable& table);

  // The classes above `code`, the outermost first: of a class (`isClass`) those that it lies in, of a cost item its own, too.
  std::vector<CostItemClass> above(const std::string& code, bool isClass) const;

  // The class that `code`, a class or a cost item, falls to at a grade: the one of that grade in which it lies, or, where its
  // classes end above that grade, the lowest of them. A class is in itself. Empty for a code that has no class.
  CostItemClass atGrade(const std::string& code, bool isClass, int grade) const;

  // The deepest grade; 0 where there are no classes.
  int grades() const;

 private:
  struct Graded {
    CostItemClass key;
    int grade;
  };

  std::vector<Graded> classes_;  // the outermost first
  std::map<std::string, std::string> classOfItem_;
};

}  // namespace quillon::workbench
