#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "extender_base/VntTableValues.h"
#include "vnt/VntCommand.h"
#include "vnt/VntFieldHandle.h"

/// One step on a part of a multiple field. It holds the values that are not in the field at the time, and no
/// others; the field notifies once.
class VntTableCommand : public VntCommand {
 public:
  void execute() override;
  void undo() override { run(true); }
  void redo() override { run(false); }

  /// What was tried on the field before is made a step without being done again.
  void setDone(bool wasDefault) {
    m_isDone = true;
    m_wasDefault = wasDefault;
  }

 protected:
  VntTableCommand(SoMField* field, QString const& text);
  /// Without notification; the field is there.
  virtual void apply(SoMField& field, bool back) = 0;

 private:
  void run(bool back);

  VntFieldHandle m_field;
  bool m_wasDefault = false;
  bool m_isDone = false;
};

/// Values of the field make room for others, which may be more or fewer.
class VntTableExchange : public VntTableCommand {
 public:
  VntTableExchange(SoMField* field, QString const& text, std::vector<VntTableRun> runs,
                   std::unique_ptr<VntTableList> values)
      : VntTableCommand(field, text), m_runs(std::move(runs)), m_values(std::move(values)) {}

 private:
  void apply(SoMField& field, bool) override { m_values->exchange(field, m_runs); }

  std::vector<VntTableRun> m_runs;
  std::unique_ptr<VntTableList> m_values;
};

/// Values that lie together get another order.
class VntTableReorder : public VntTableCommand {
 public:
  VntTableReorder(SoMField* field, QString const& text, int start, std::vector<int> order)
      : VntTableCommand(field, text),
        m_access(VntTableAccess::of(*field)),
        m_start(start),
        m_order(std::move(order)) {}

 private:
  void apply(SoMField& field, bool back) override;

  VntTableAccess const& m_access;
  int m_start;
  std::vector<int> m_order;
  bool m_isApplied = false;
};
