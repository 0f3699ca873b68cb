#include "workbench/account/sample_company.h"

#include <algorithm>
#include <optional>

#include "workbench/account/table_writer.h"

namespace quillon::account {
namespace {

// --- Inventories ----------------------------------------------------------------------------------------------------

constexpr NamedCode inventoryClasses[] = {
    {"01", "原材料"}, {"0101", "钢材"},     {"0102", "铝材"},     {"0103", "铜材"},     {"0104", "塑料粒子"},
    {"02", "外购件"}, {"0201", "轴承"},     {"0202", "紧固件"},   {"0203", "电机"},     {"0204", "密封件"},
    {"03", "半成品"}, {"0301", "壳体铸件"}, {"0302", "轴类零件"}, {"0303", "齿轮"},     {"04", "产成品"},
    {"0401", "水泵"}, {"0402", "阀门"},     {"0403", "减速机"},   {"05", "包装物"},     {"0501", "纸箱"},
    {"0502", "木箱"}, {"06", "低值易耗品"}, {"0601", "油品"},     {"0602", "劳保用品"}, {"0603", "刀具"},
};

struct Unit {
  std::string_view code;
  std::string_view name;
  std::string_view group;
  bool main;
  std::int64_t mainUnits;  // how many main units it counts
};

constexpr Unit units[] = {
    {"0101", "千克", "01", true, 1},  {"0102", "吨", "01", false, 1000}, {"0201", "件", "02", true, 1},
    {"0202", "箱", "02", false, 20},  {"0301", "台", "03", true, 1},     {"0401", "升", "04", true, 1},
    {"0402", "桶", "04", false, 200}, {"0501", "套", "05", true, 1},
};

// A family of inventories that differ by size: "Φ" 20 "×6000mm", "Φ" 25 "×6000mm", ...
struct Family {
  std::string_view name;
  std::string_view inventoryClass;
  std::string_view modelBefore;
  int firstSize;
  int sizeStep;
  std::string_view modelAfter;
  std::string_view unit;
  std::int64_t unitPrice;    // cents, of the first size
  std::int64_t targetStock;  // units
};

constexpr Family rawMaterials[] = {
    {"热轧钢板", "0101", "Q235B ", 4, 2, "×1500×6000mm", "0101", 420, 20'000},
    {"45号圆钢", "0101", "Φ", 20, 5, "×6000mm", "0101", 480, 12'000},
    {"无缝钢管", "0101", "Φ", 32, 6, "×4mm", "0101", 610, 8'000},
    {"铝合金型材", "0102", "6063-T5 ", 20, 10, "×3mm", "0101", 2'350, 3'000},
    {"铝锭", "0102", "ADC12 ", 5, 5, "千克/块", "0101", 1'890, 6'000},
    {"黄铜棒", "0103", "H59 Φ", 10, 2, "mm", "0101", 5'240, 1'500},
    {"聚丙烯粒子", "0104", "注塑级 MI", 8, 4, "", "0101", 860, 9'000},
    {"尼龙粒子", "0104", "PA66 GF", 10, 5, "", "0101", 1'980, 2'500},
};
constexpr Family purchasedParts[] = {
    {"深沟球轴承", "0201", "6", 201, 1, "-2RS", "0201", 1'260, 1'200},
    {"圆锥滚子轴承", "0201", "30", 204, 1, "", "0201", 3'480, 500},
    {"六角头螺栓", "0202", "M", 6, 2, "×40 8.8级", "0201", 45, 20'000},
    {"三相异步电动机", "0203", "YE3-", 80, 10, "M-4", "0301", 78'000, 60},
    {"机械密封", "0204", "M7N-", 24, 2, "", "0501", 13'600, 150},
    {"O形密封圈", "0204", "Φ", 30, 5, "×3.55 丁腈", "0201", 62, 8'000},
};
constexpr Family semiFinished[] = {
    {"泵体壳体", "0301", "HT200 DN", 50, 15, "", "0201", 18'600, 240},
    {"阀体壳体", "0301", "WCB DN", 40, 10, "", "0201", 12'300, 300},
    {"传动轴", "0302", "40Cr Φ", 25, 5, "×380", "0201", 8'900, 400},
    {"斜齿轮", "0303", "m3 z", 21, 2, "", "0201", 6'450, 500},
    {"蜗轮", "0303", "m4 z", 30, 2, "", "0201", 9'700, 260},
};
constexpr Family finished[] = {
    {"单级离心泵", "0401", "IS65-50-", 125, 10, "", "0301", 186'000, 60},
    {"自吸泵", "0401", "ZW50-", 10, 2, "-20", "0301", 243'000, 40},
    {"闸阀", "0402", "Z41H-16C DN", 40, 10, "", "0301", 38'500, 150},
    {"球阀", "0402", "Q41F-16P DN", 25, 5, "", "0301", 29'600, 180},
    {"齿轮减速机", "0403", "R", 37, 10, "-Y1.5", "0301", 318'000, 30},
};
constexpr Family packaging[] = {
    {"瓦楞纸箱", "0501", "五层 ", 400, 20, "×300×300mm", "0201", 860, 1'500},
    {"熏蒸木箱", "0502", "", 800, 50, "×600×600mm", "0201", 16'500, 120},
};
constexpr Family consumables[] = {
    {"抗磨液压油", "0601", "L-HM", 32, 14, "", "0401", 1'580, 800},
    {"丁腈防护手套", "0602", "", 7, 1, "码", "0201", 420, 1'000},
    {"硬质合金立铣刀", "0603", "Φ", 4, 1, "×75 4刃", "0201", 6'800, 80},
};

// Of 25 inventories, how many are of which kind.
constexpr struct {
  Category category;
  int until;
} categoryShares[] = {
    {Category::rawMaterial, 5}, {Category::purchasedPart, 11}, {Category::semiFinished, 15},
    {Category::finished, 20},   {Category::packaging, 22},     {Category::consumable, 25},
};

std::span<const Family> familiesOf(Category category) {
  switch (category) {
    case Category::rawMaterial:
      return rawMaterials;
    case Category::purchasedPart:
      return purchasedParts;
    case Category::semiFinished:
      return semiFinished;
    case Category::finished:
      return finished;
    case Category::packaging:
      return packaging;
    case Category::consumable:
      break;
  }
  return consumables;
}

// The family of an inventory and its place in it follow from its number alone.
struct FamilyMember {
  Category category{};
  const Family* family = nullptr;
  int ordinal = 0;  // from 0
};

FamilyMember familyMember(int number) {
  constexpr int cycle = 25;
  const auto* share =
      std::ranges::find_if(categoryShares, [&](const auto& entry) { return number % cycle < entry.until; });
  const int from = share == std::begin(categoryShares) ? 0 : std::prev(share)->until;
  const int ordinal = number / cycle * (share->until - from) + number % cycle - from;
  const std::span<const Family> families = familiesOf(share->category);
  const int count = static_cast<int>(families.size());
  return {share->category, &families[static_cast<std::size_t>(ordinal % count)], ordinal / count};
}

std::string model(const FamilyMember& member) {
  const Family& family = *member.family;
  return std::string(family.modelBefore) + std::to_string(family.firstSize + family.sizeStep * member.ordinal) +
         std::string(family.modelAfter);
}

constexpr std::array<std::array<std::string_view, 4>, freeItemCount> freeItems = {{
    {"红色", "蓝色", "灰色", "本色"},
    {"一级", "二级", "三级", "特级"},
    {"本地", "外地", "进口", "保税"},
    {"常温", "低温", "高温", "耐寒"},
    {"普通包装", "出口包装", "裸装", "木托"},
    {"单相", "三相", "直流", "变频"},
    {"左旋", "右旋", "直型", "弯型"},
    {"光面", "磨砂", "镀锌", "喷塑"},
    {"自制", "外协", "客供", "返修"},
    {"国标", "美标", "德标", "企标"},
}};

// --- Cost items -----------------------------------------------------------------------------------------------------

constexpr NamedCode costItemClasses[] = {
    {"01", "材料成本"},       {"0101", "主要材料"},   {"010101", "金属材料"},   {"010102", "非金属材料"},
    {"0102", "外购件"},       {"010201", "标准件"},   {"010202", "机电配件"},   {"0103", "辅助材料"},
    {"02", "人工成本"},       {"0201", "直接人工"},   {"020101", "机加工人工"}, {"020102", "装配人工"},
    {"0202", "间接人工"},     {"03", "制造费用"},     {"0301", "折旧与租赁"},   {"030101", "设备折旧"},
    {"030102", "厂房租赁"},   {"0302", "动力费用"},   {"030201", "电力"},       {"030202", "水与蒸汽"},
    {"0303", "其他制造费用"}, {"04", "采购费用"},     {"0401", "运杂费"},       {"040101", "运输"},
    {"040102", "装卸"},       {"0402", "关税与保险"}, {"040201", "进口关税"},   {"040202", "运输保险"},
    {"05", "委外加工"},
};

enum ExpenseType { material, labour, overhead, energy, purchaseCost, subcontracting };

struct CostItem {
  std::string_view code;
  std::string_view name;
  std::string_view costItemClass;
  ExpenseType type;
  bool hasDetails;
};

// Some stand in classes of the first or second grade, so that no class of a lower grade answers for them.
constexpr CostItem costItems[] = {
    {"CI01", "金属材料费", "010101", material, true},      {"CI02", "非金属材料费", "010102", material, true},
    {"CI03", "标准件费", "010201", material, true},        {"CI04", "机电配件费", "010202", material, true},
    {"CI05", "辅助材料费", "0103", material, true},        {"CI06", "机加工工资", "020101", labour, false},
    {"CI07", "装配工资", "020102", labour, false},         {"CI08", "车间管理人员薪酬", "0202", labour, true},
    {"CI09", "设备折旧费", "030101", overhead, true},      {"CI10", "厂房租金", "030102", overhead, false},
    {"CI11", "生产用电", "030201", energy, true},          {"CI12", "生产用水与蒸汽", "030202", energy, true},
    {"CI13", "机物料消耗", "0303", overhead, true},        {"CI14", "采购运输费", "040101", purchaseCost, true},
    {"CI15", "采购装卸费", "040102", purchaseCost, false}, {"CI16", "进口关税", "040201", purchaseCost, false},
    {"CI17", "运输保险费", "040202", purchaseCost, false}, {"CI18", "委外加工费", "05", subcontracting, true},
};

struct Expense {
  int costItem;  // from 1
  std::string_view code;
  std::string_view name;
};

constexpr Expense expenses[] = {
    {8, "RG01", "机加工车间管理人员工资"},
    {8, "RG02", "装配车间管理人员工资"},
    {9, "ZJ01", "数控车床折旧"},
    {9, "ZJ02", "加工中心折旧"},
    {9, "ZJ03", "装配流水线折旧"},
    {11, "DL01", "机加工车间用电"},
    {11, "DL02", "表面处理车间用电"},
    {12, "DL03", "工业用水"},
    {12, "DL04", "生产蒸汽"},
    {13, "JW01", "刀具消耗"},
    {13, "JW02", "润滑油脂消耗"},
    {14, "YF01", "公路运费"},
    {14, "YF02", "铁路运费"},
    {18, "WX01", "热处理加工费"},
    {18, "WX02", "电镀加工费"},
};

// Details are numbered apart from cost items: first one for each cost item without details, then the expenses, then
// one for each inventory that is a material.
constexpr int firstExpenseDetail = 101;
constexpr int firstMaterialDetail = 1001;

int expenseDetail(const Expense& expense) {
  return firstExpenseDetail + static_cast<int>(&expense - std::begin(expenses));
}

// The cost item under which a material counts; 0: it is no material.
int materialCostItem(const FamilyMember& member) {
  switch (member.category) {
    case Category::rawMaterial:
      return member.family->inventoryClass == "0104" ? 2 : 1;
    case Category::purchasedPart:
      return member.family->inventoryClass == "0203" ? 4 : 3;
    case Category::packaging:
      return 5;
    case Category::semiFinished:
    case Category::finished:
    case Category::consumable:
      break;
  }
  return 0;
}

// Drawn in a list, so that the order of the draws is settled.
struct Weights {
  std::int64_t quantity = 0;
  std::int64_t amount = 0;
};

CostPart part(int costItem, int detail, Weights weights) {
  return {costItem, detail, static_cast<int>(weights.quantity), static_cast<int>(weights.amount)};
}

// A part of cost item `costItem`: by one of its expenses where it has details.
CostPart expensePart(int costItem, Weights weights, Random& random) {
  const auto mine = [&](const Expense& expense) { return expense.costItem == costItem; };
  const auto count = std::ranges::count_if(expenses, mine);
  if (count == 0) return part(costItem, costItem, weights);
  const auto* first = std::ranges::find_if(expenses, mine);
  return part(costItem, expenseDetail(*(first + random.below(count))), weights);
}

// What a bought inventory is made up of: itself and what it took to get it here.
std::vector<CostPart> boughtParts(int number, int costItem, Random& random) {
  std::vector<CostPart> parts = {part(costItem, firstMaterialDetail + number, {80, random.between(860, 940)})};
  parts.push_back(expensePart(14, {10, random.between(20, 50)}, random));
  if (random.percent(40)) parts.push_back(expensePart(15, {5, random.between(5, 15)}, random));
  if (random.percent(15)) {
    parts.push_back(expensePart(16, {3, random.between(30, 80)}, random));
    parts.push_back(expensePart(17, {2, random.between(5, 10)}, random));
  }
  return parts;
}

// What a made inventory is made up of: one or two materials, labour, overhead, energy, now and then subcontracting.
// `materials` are the numbers of inventories that are materials.
std::vector<CostPart> madeParts(const std::vector<int>& materials, Random& random) {
  const auto materialPart = [](int number, Weights weights) {
    return part(materialCostItem(familyMember(number)), firstMaterialDetail + number, weights);
  };
  const int first = random.pick(materials);
  const int second = random.pick(materials);
  std::vector<CostPart> parts = {materialPart(first, {random.between(30, 60), random.between(350, 500)})};
  if (second != first) parts.push_back(materialPart(second, {random.between(10, 30), random.between(80, 200)}));
  const int wages = random.percent(50) ? 6 : 7;
  parts.push_back(expensePart(wages, {random.between(10, 20), random.between(120, 220)}, random));
  parts.push_back(expensePart(9, {5, random.between(40, 90)}, random));
  parts.push_back(expensePart(11, {5, random.between(30, 60)}, random));
  struct {
    int costItem;
    int chance;
    std::int64_t quantityWeight;
    std::int64_t least;
    std::int64_t most;
  } constexpr extras[] = {
      {8, 30, 2, 20, 40}, {10, 20, 2, 10, 30}, {12, 20, 2, 10, 30}, {13, 20, 2, 10, 30}, {18, 15, 5, 40, 120}};
  for (const auto& extra : extras) {
    if (!random.percent(extra.chance)) continue;
    parts.push_back(
        expensePart(extra.costItem, {extra.quantityWeight, random.between(extra.least, extra.most)}, random));
  }
  return parts;
}

// --- Lists ----------------------------------------------------------------------------------------------------------

constexpr NamedCode customerClasses[] = {{"01", "国内直销"}, {"02", "国内经销"}, {"03", "出口"}};
constexpr NamedCode vendorClasses[] = {
    {"01", "原材料供应商"}, {"02", "配件供应商"}, {"03", "委外厂商"}, {"04", "进口"}};

constexpr NamedCode costCentres[] = {
    {"CC01", "机加工一线"}, {"CC02", "机加工二线"}, {"CC03", "装配线"},   {"CC04", "表面处理线"},
    {"CC05", "辅助生产"},   {"CC06", "管理中心"},   {"CC07", "营销中心"},
};

struct DepartmentCostCentre {
  std::string_view department;
  std::string_view costCentre;
};
// The departments without work centres.
constexpr DepartmentCostCentre departmentCostCentres[] = {
    {"01", "CC06"}, {"02", "CC06"}, {"03", "CC06"}, {"04", "CC07"}, {"05", "CC06"},
    {"09", "CC05"}, {"10", "CC06"}, {"11", "CC05"}, {"12", "CC07"},
};
// All departments, at the level of the department itself.
constexpr DepartmentCostCentre allDepartmentCostCentres[] = {
    {"01", "CC06"}, {"02", "CC06"}, {"03", "CC06"}, {"04", "CC07"}, {"05", "CC06"}, {"06", "CC01"},
    {"07", "CC03"}, {"08", "CC04"}, {"09", "CC05"}, {"10", "CC06"}, {"11", "CC05"}, {"12", "CC07"},
};

constexpr NamedCode ledgerAccounts[] = {
    {"1401", "材料采购"}, {"1403", "原材料"},         {"1405", "库存商品"},     {"1406", "发出商品"},
    {"1411", "周转材料"}, {"1901", "待处理财产损溢"}, {"2202", "应付账款"},     {"5001", "生产成本"},
    {"5101", "制造费用"}, {"6401", "主营业务成本"},   {"6402", "其他业务成本"}, {"6602", "管理费用"},
};

constexpr NamedCode projectClasses[] = {{"01", "市政工程"}, {"02", "工业工程"}};
constexpr NamedCode researchClasses[] = {{"A", "新产品"}, {"B", "工艺改进"}};

std::string_view valuationMethod(Valuation valuation) {
  switch (valuation) {
    case Valuation::inventory:
      return "按存货核算";
    case Valuation::department:
      return "按部门核算";
    case Valuation::warehouse:
      break;
  }
  return "按仓库核算";
}

// --- Writing --------------------------------------------------------------------------------------------------------

void writeList(tsql::Connection& connection, std::string_view table, std::string_view code, std::string_view name,
               std::span<const NamedCode> rows) {
  TableWriter writer(connection, table, {code, name});
  for (const NamedCode& row : rows)
    writer.add(row.code, row.name);
}

// The same list with the class of each row in a third column; the classes take turns.
void writeClassifiedList(tsql::Connection& connection, std::string_view table,
                         std::initializer_list<std::string_view> columns, std::span<const NamedCode> rows,
                         std::span<const NamedCode> classes) {
  TableWriter writer(connection, table, columns);
  for (std::size_t i = 0; i < rows.size(); ++i)
    writer.add(rows[i].code, rows[i].name, classes[i % classes.size()].code);
}

int gradeOf(std::string_view classCode) {
  return static_cast<int>(classCode.size()) / 2;
}

void writeInventories(tsql::Connection& connection, const Company& company, int firstYear) {
  TableWriter classes(connection, "InventoryClass", {"cInvCCode", "cInvCName", "iInvCGrade"});
  for (const NamedCode& row : inventoryClasses)
    classes.add(row.code, row.name, gradeOf(row.code));

  TableWriter unitWriter(connection, "ComputationUnit",
                         {"cComUnitCode", "cComUnitName", "cGroupCode", "bMainUnit", "iChangRate"});
  for (const Unit& unit : units) {
    constexpr std::int64_t hundredths = 100;
    unitWriter.add(unit.code, unit.name, unit.group, unit.main, Quantity{unit.mainUnits * hundredths});
  }

  std::vector<std::string> columns = {"cInvCode",   "cInvName",     "cInvAddCode", "cInvStd", "cInvCCode",
                                      "cGroupCode", "cComUnitCode", "dSDate",      "dEDate",  "bCheckBatch"};
  for (std::size_t i = 1; i <= freeItemCount; ++i)
    columns.push_back("bCheckFree" + std::to_string(i));
  constexpr int definedFields = 16;
  for (int i = 1; i <= definedFields; ++i)
    columns.push_back("cInvDefine" + std::to_string(i));
  TableWriter writer(connection, "Inventory", columns);

  const Day start = dayOf(firstYear, 1, 1);
  int number = 0;
  std::vector<tsql::Value> row;
  for (const InventoryItem& item : company.items) {
    const FamilyMember member = familyMember(number);
    // Every 40th inventory went out of use in the middle of the last year; its ledger goes on, as stock is used up.
    constexpr int outOfUse = 40;
    const std::optional<Day> end =
        number % outOfUse == outOfUse - 1 ? std::optional(dayOf(lastSampleYear, 6, 30)) : std::nullopt;
    row = {toValue(item.code),
           toValue(item.name),
           toValue("T" + padded(number + 1, 6)),
           toValue(model(member)),
           toValue(member.family->inventoryClass),
           toValue(member.family->unit.substr(0, 2)),
           toValue(member.family->unit),
           toValue(start),
           toValue(end),
           toValue(item.batches)};
    for (const bool checked : item.checkedFreeItems)
      row.push_back(toValue(checked));
    // Texts in fields 1 to 10, numbers in 11 to 14, dates in 15 and 16; a field in three is left empty.
    for (int field = 1; field <= definedFields; ++field) {
      const int choice = number % 5 + 1;
      if ((number + field) % 3 == 0) {
        row.push_back(toValue(nullptr));
      } else if (field <= 10) {
        row.push_back(toValue("属性" + std::to_string(field) + "-" + std::to_string(choice)));
      } else if (field <= 12) {
        row.push_back(toValue(choice * field));
      } else if (field <= 14) {
        row.push_back(toValue(choice + 0.5));
      } else {
        row.push_back(toValue(start + std::chrono::days(choice)));
      }
    }
    writer.addRow(row);
    ++number;
  }
}

void writeCostItems(tsql::Connection& connection, const Company& company, const SampleOptions& options) {
  TableWriter classes(connection, "Ca_FxClassDef", {"iFxCId", "cFxCCode", "cFxCName", "iGrade"});
  constexpr int firstClass = 1;
  int classId = firstClass;
  for (const NamedCode& row : costItemClasses)
    classes.add(classId++, row.code, row.name, gradeOf(row.code));

  TableWriter items(connection, "Ca_FxDef", {"iFxID", "cFxCode", "cFxName", "cFxCID", "bHasDetails"});
  TableWriter details(connection, "Ca_FxMapExpDID", {"iFxDID", "iFxID", "cAmoType"});
  int costItem = 1;
  for (const CostItem& row : costItems) {
    const auto* itsClass = std::ranges::find(costItemClasses, row.costItemClass, &NamedCode::code);
    items.add(costItem, row.code, row.name, firstClass + static_cast<int>(itsClass - std::begin(costItemClasses)),
              row.hasDetails);
    if (!row.hasDetails) details.add(costItem, costItem, static_cast<int>(row.type));
    ++costItem;
  }

  TableWriter mapping(connection, "Ca_FxMapExpDetails",
                      {"iFxDID", "cAmoType", "cInvCode", "cAmoID", "cFree1", "cFree2"});
  for (const Expense& expense : expenses) {
    const int type = costItems[expense.costItem - 1].type;
    details.add(expenseDetail(expense), expense.costItem, type);
    mapping.add(expenseDetail(expense), type, nullptr, expense.code, nullptr, nullptr);
  }
  for (int number = 0; number < static_cast<int>(company.items.size()); ++number) {
    const int materialItem = materialCostItem(familyMember(number));
    if (materialItem == 0) continue;
    const InventoryItem& item = company.items[static_cast<std::size_t>(number)];
    const auto free = [&](std::size_t index) {
      return item.checkedFreeItems[index] ? std::optional(freeItems[index][0]) : std::nullopt;
    };
    details.add(firstMaterialDetail + number, materialItem, static_cast<int>(material));
    mapping.add(firstMaterialDetail + number, static_cast<int>(material), item.code, nullptr, free(0), free(1));
  }

  TableWriter periods(connection, "Ca_CostExpDetail_Period", {"cAmoID", "cAmoType", "iPeriod", "cAmoName"});
  const int firstYear = lastSampleYear - options.years + 1;
  for (int year = firstYear; year <= lastSampleYear; ++year) {
    for (int month = year == firstYear ? options.costItemStartMonth : 1; month <= 12; ++month) {
      for (const Expense& expense : expenses) {
        // Expenses are renamed with the last year, so that a report shows which period it took the name from.
        const bool renamed = year == lastSampleYear && year != firstYear;
        periods.add(expense.code, static_cast<int>(costItems[expense.costItem - 1].type), periodText(year, month),
                    std::string(expense.name) + (renamed ? "（新）" : ""));
      }
    }
  }
}

void writeOptions(tsql::Connection& connection, const SampleOptions& options) {
  const int firstYear = lastSampleYear - options.years + 1;
  const std::string startDate = std::to_string(firstYear) + "-" + padded(options.startMonth, 2) + "-01";
  const std::string_view valuation = valuationMethod(options.valuation);
  TableWriter writer(connection, "AccInformation", {"cSysID", "cID", "cName", "cCaption", "cValue"});
  writer.add("AA", "01", "cSysVersion", "系统版本", "工业");
  writer.add("AA", "02", "iStrsQuanDecDgt", "存货数量小数位", "2");
  writer.add("AA", "03", "iStrsPriDecDgt", "存货单价小数位", "4");
  writer.add("AA", "04", "ArchiveDate", "数据归档日期", nullptr);
  writer.add("AA", "05", "cValueStyle", "存货核算方式", valuation);
  writer.add("IA", "01", "dIAStartDate", "存货核算启用日期", startDate);
  writer.add("IA", "02", "dIAFirstDate", "存货核算首个日期", startDate);
  writer.add("IA", "03", "cValueStyle", "存货核算方式", valuation);
  writer.add("IA", "04", "iCurrentYear", "当前会计年度", std::to_string(lastSampleYear));
  writer.add("IA", "05", "bZYXS", "直运销售核算", "False");
  writer.add("CA", "11002", "cCAStartPeriod", "成本核算启用期间", periodText(firstYear, options.costItemStartMonth));

  TableWriter past(connection, "IA_HisOption", {"iYear", "cSysID", "cName", "cValue"});
  TableWriter accounts(connection, "Code", {"iYear", "cCode", "cCode_Name"});
  TableWriter periods(connection, "orvsystem..UA_Period", {"cAcc_Id", "iYear", "iId", "dBegin", "dEnd"});
  for (int year = firstYear; year <= lastSampleYear; ++year) {
    if (year != lastSampleYear) past.add(year, "IA", "cValueStyle", valuation);
    for (const NamedCode& account : ledgerAccounts)
      accounts.add(year, account.code, account.name);
    for (int month = 1; month <= 12; ++month) {
      periods.add("001", year, month, dayOf(year, month, 1), dayOf(year, month, daysInMonth(year, month)));
    }
  }
}

}  // namespace

const std::vector<NamedCode>& departments() {
  static const std::vector<NamedCode> list = {
      {"01", "总经理办公室"}, {"02", "财务部"},     {"03", "采购部"},   {"04", "销售部"},
      {"05", "仓储部"},       {"06", "机加工车间"}, {"07", "装配车间"}, {"08", "表面处理车间"},
      {"09", "设备动力部"},   {"10", "研发部"},     {"11", "质量部"},   {"12", "售后服务部"},
  };
  return list;
}

const std::vector<Warehouse>& warehouses() {
  static const std::vector<Warehouse> list = {
      {{"01", "原材料库"}, "03"}, {{"02", "外购件库"}, "05"},   {{"03", "半成品库"}, "06"},
      {{"04", "成品库"}, "04"},   {{"05", "包装物库"}, "07"},   {{"06", "低值易耗品库"}, "09"},
      {{"07", "线边库"}, "08"},   {{"08", "售后备件库"}, "12"},
  };
  return list;
}

int mainWarehouse(Category category) {
  return static_cast<int>(category);
}

int secondWarehouse(Category category) {
  constexpr int lineSide = 6;
  constexpr int afterSales = 7;
  if (category == Category::consumable) return -1;
  return category == Category::finished ? afterSales : lineSide;
}

const std::vector<WorkCentre>& workCentres() {
  static const std::vector<WorkCentre> list = {
      {"WC01", "数控车削中心", "06"}, {"WC02", "铣削加工中心", "06"}, {"WC03", "泵类装配线", "07"},
      {"WC04", "阀门装配线", "07"},   {"WC05", "喷涂工段", "08"},     {"WC06", "电泳工段", "08"},
  };
  return list;
}

const std::vector<NamedCode>& customers() {
  static const std::vector<NamedCode> list = {
      {"C0001", "江北水务工程有限公司"}, {"C0002", "嘉禾机电经销部"},   {"C0003", "Northfield Pumps Ltd."},
      {"C0004", "临港化工设备有限公司"}, {"C0005", "恒泰流体设备商行"}, {"C0006", "Westhaven Valves GmbH"},
      {"C0007", "青川灌溉设备有限公司"}, {"C0008", "东湖机电贸易公司"}, {"C0009", "Harbourline Trading"},
      {"C0010", "远山矿业机械有限公司"}, {"C0011", "新桥五金机电市场"}, {"C0012", "Eastgate Engineering"},
      {"C0013", "白塔供热有限公司"},     {"C0014", "双溪阀门销售中心"}, {"C0015", "Lakeside Irrigation Co."},
      {"C0016", "石门环保工程有限公司"}, {"C0017", "南屏工业品超市"},   {"C0018", "Fairmont Drives"},
  };
  return list;
}

const std::vector<NamedCode>& vendors() {
  static const std::vector<NamedCode> list = {
      {"V0001", "云岭钢材有限公司"},    {"V0002", "长河轴承厂"},       {"V0003", "清泉电镀加工厂"},
      {"V0004", "Oakridge Seals Inc."}, {"V0005", "铜陵路有色金属行"}, {"V0006", "永固紧固件有限公司"},
      {"V0007", "南山热处理厂"},        {"V0008", "Redwood Bearings"}, {"V0009", "海沧塑料原料公司"},
      {"V0010", "龙泉电机有限公司"},    {"V0011", "西郊铸造厂"},       {"V0012", "Kestrel Alloys"},
      {"V0013", "大洋包装制品厂"},      {"V0014", "宏图纸箱厂"},
  };
  return list;
}

const std::vector<NamedCode>& persons() {
  static const std::vector<NamedCode> list = {
      {"P001", "陆明远"}, {"P002", "沈静怡"}, {"P003", "周子航"}, {"P004", "顾晓岚"},
      {"P005", "何一鸣"}, {"P006", "苏婉清"}, {"P007", "韩立新"}, {"P008", "彭春燕"},
      {"P009", "罗志强"}, {"P010", "叶思远"}, {"P011", "孟秋雨"}, {"P012", "谢东升"},
  };
  return list;
}

const std::vector<NamedCode>& users() {
  static const std::vector<NamedCode> list = {
      {"u01", "沈静怡"}, {"u02", "顾晓岚"}, {"u03", "苏婉清"}, {"u04", "彭春燕"}, {"u05", "叶思远"}};
  return list;
}

const std::vector<NamedCode>& projects() {
  static const std::vector<NamedCode> list = {
      {"G2201", "城东净水厂扩建"}, {"G2202", "河口泵站改造"}, {"G2301", "园区循环水工程"}};
  return list;
}

const std::vector<NamedCode>& researchTopics() {
  static const std::vector<NamedCode> list = {{"Y01", "高效节能泵研制"}, {"Y02", "低噪声减速机工艺"}};
  return list;
}

const std::array<std::string_view, 4>& freeItemValues(std::size_t number) {
  return freeItems[number];
}

Company makeCompany(const SampleOptions& options, Random& random) {
  // About 27 ledger lines a year for each inventory, whatever the size of the account.
  constexpr std::int64_t linesPerItemAndYear = 27;
  constexpr std::int64_t fewest = 25;
  constexpr std::int64_t most = 12'000;
  const int count = static_cast<int>(std::clamp(options.rows / (linesPerItemAndYear * options.years), fewest, most));

  Company company;
  company.items.reserve(static_cast<std::size_t>(count));
  std::vector<int> materials;
  for (int number = 0; number < count; ++number) {
    const FamilyMember member = familyMember(number);
    const Family& family = *member.family;
    InventoryItem item;
    item.code = std::string(family.inventoryClass) + "-" + padded(number + 1, 5);
    item.name = family.name;
    item.category = member.category;
    item.wholeUnits = family.unit != "0101" && family.unit != "0401";
    item.batches = random.percent(25);
    item.checkedFreeItems[0] = random.percent(15);
    item.checkedFreeItems[1] = random.percent(10);
    // Free items 3 to 10 are rare: one inventory in seven is kept by one of them, in turn.
    constexpr int rare = 7;
    if (number % rare == 3) item.checkedFreeItems[static_cast<std::size_t>(2 + number / rare % 8)] = true;
    constexpr std::int64_t percentBySize = 4;
    constexpr std::int64_t largestIncrease = 400;
    item.unitPrice = family.unitPrice * (100 + std::min(percentBySize * member.ordinal, largestIncrease)) / 100;
    constexpr std::int64_t hundredths = 100;
    item.targetStock = family.targetStock * hundredths * random.between(50, 150) / 100;
    if (materialCostItem(member) != 0) materials.push_back(number);
    company.items.push_back(std::move(item));
  }
  for (int number = 0; number < count; ++number) {
    InventoryItem& item = company.items[static_cast<std::size_t>(number)];
    const int costItem = materialCostItem(familyMember(number));
    if (costItem != 0) {
      item.parts = boughtParts(number, costItem, random);
    } else if (item.category != Category::consumable) {
      item.parts = madeParts(materials, random);
    }
  }
  return company;
}

void writeMasters(tsql::Connection& connection, const Company& company, const SampleOptions& options) {
  writeOptions(connection, options);
  writeList(connection, "orvsystem..ua_user", "cUser_Id", "cUser_Name", users());
  writeList(connection, "Department", "cDepCode", "cDepName", departments());
  writeClassifiedList(connection, "Person", {"cPersonCode", "cPersonName", "cDepCode"}, persons(), departments());
  {
    TableWriter writer(connection, "Warehouse", {"cWhCode", "cWhName"});
    for (const Warehouse& warehouse : warehouses())
      writer.add(warehouse.master.code, warehouse.master.name);
  }
  writeList(connection, "CustomerClass", "cCCCode", "cCCName", customerClasses);
  writeClassifiedList(connection, "Customer", {"cCusCode", "cCusName", "cCCCode"}, customers(), customerClasses);
  writeList(connection, "VendorClass", "cVCCode", "cVCName", vendorClasses);
  writeClassifiedList(connection, "Vendor", {"cVenCode", "cVenName", "cVCCode"}, vendors(), vendorClasses);

  writeList(connection, "CA_CostCenter", "cCostCenter", "cCostCenterName", costCentres);
  writeList(connection, "CAQ_CostCenter", "cDeptID", "cDeptName", costCentres);
  {
    TableWriter centres(connection, "sfc_workcenter", {"WcId", "WcCode", "Description"});
    TableWriter map(connection, "CA_CostCenterMap", {"cDepCode", "bIsWCID", "cCostCenter"});
    int number = 0;
    for (const WorkCentre& centre : workCentres()) {
      centres.add(number + 1, centre.code, centre.name);
      map.add(centre.code, true, costCentres[number % 4].code);
      ++number;
    }
    for (const DepartmentCostCentre& row : departmentCostCentres)
      map.add(row.department, false, row.costCentre);
    TableWriter departmentMap(connection, "CAQ_CostCenterMap", {"cBusID", "cDeptID"});
    for (const DepartmentCostCentre& row : allDepartmentCostCentres)
      departmentMap.add(row.department, row.costCentre);
  }
  {
    TableWriter writer(connection, "fItem", {"cItem_Class", "cItem_Name", "cTable", "cClassTable"});
    writer.add("00", "工程项目", "fItem_Project", "fItem_ProjectClass");
    writer.add("01", "研发课题", "fItem_Research", "fItem_ResearchClass");
    writer.add("98", "费用项目", nullptr, nullptr);
    writer.add("ch", "存货核算", "Inventory", "InventoryClass");
  }
  writeList(connection, "fItem_ProjectClass", "cItemCCode", "cItemCName", projectClasses);
  writeClassifiedList(connection, "fItem_Project", {"cItemCode", "cItemName", "cItemCCode"}, projects(),
                      projectClasses);
  writeList(connection, "fItem_ResearchClass", "cItemCCode", "cItemCName", researchClasses);
  writeClassifiedList(connection, "fItem_Research", {"cItemCode", "cItemName", "cItemCCode"}, researchTopics(),
                      researchClasses);

  writeInventories(connection, company, lastSampleYear - options.years + 1);
  writeCostItems(connection, company, options);
}

}  // namespace quillon::account
