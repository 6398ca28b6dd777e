// The text form of graphs.

#include "kestrava/fields/SoField.h"
#include "kestrava/fields/SoFieldContainer.h"
#include "kestrava/io/SoGraphBytes.h"
#include "kestrava/io/SoGraphForm.h"
#include "kestrava/io/SoValueIO.h"
#include "kestrava/nodes/SoUnknownNode.h"

namespace {

class GraphText : public SoGraphForm {
 public:
  GraphText(SoOutput& out, SoGraphSurvey& survey) : m_out(out), m_survey(survey) {}

  void beginRoot() override { m_out.newLine(); }
  void endRoot() override { m_out.newLine(); }

  void putNull() override { m_out.put("NULL"); }
  void putUse(SoFieldContainer const* container, SoGraphSurvey::Entry& entry) override {
    m_out.put("USE ");
    m_out.put(m_survey.getTextName(container, &entry));
  }

  void begin(SoFieldContainer const* container, SoGraphSurvey::Entry* entry) override {
    std::string const& name = m_survey.getTextName(container, entry);
    if (!name.empty()) {
      m_out.put("DEF ");
      m_out.put(name);
      m_out.put(" ");
    }
    m_out.put(m_survey.classOf(container).typeName.str());
    m_out.put(" {");
    m_out.indent(1);
    m_isEmpty = true;
    if (dynamic_cast<SoUnknownNode const*>(container)) declareFields(container);
  }
  void end() override {
    m_out.indent(-1);
    if (m_isEmpty) {
      m_out.put(" ");
    } else {
      m_out.newLine();
    }
    m_out.put("}");
    m_isEmpty = false;
  }

  void beginChild() override { startLine(); }
  void beginField(SoField const* field, bool) override {
    startLine();
    m_out.put(field->getName().str());
  }
  void putValue(SoField const* field) override {
    m_out.put(" ");
    field->writeValue(m_out);
  }
  void beginList(int count, bool isMany) override {
    m_lists.push_back(!isMany || count == 1 ? BARE : count == 0 ? NOTHING : LINES);
    if (count == 0) m_out.put(" [ ]");
    if (m_lists.back() != LINES) return;
    m_out.put(" [");
    m_out.indent(1);
  }
  void beginListValue() override {
    if (m_lists.back() == LINES) {
      m_out.newLine();
    } else {
      m_out.put(" ");
    }
  }
  void endList() override {
    if (m_lists.back() == LINES) {
      m_out.indent(-1);
      m_out.newLine();
      m_out.put("]");
    }
    m_lists.pop_back();
  }
  void beginPath() override { m_out.put("Path { "); }
  void endPath(std::vector<std::int32_t> const& steps) override {
    m_out.put(" ");
    SoWriteValues(m_out, steps);
    m_out.put(" }");
  }
  void putIgnored(SoField const*) override { m_out.put(" ~"); }
  void beginSource(SoField const*) override { m_out.put(" = "); }
  void endSource(SoField const* source) override {
    m_out.put(" . ");
    m_out.put(source->getName().str());
  }

 private:
  enum Layout : char { BARE, NOTHING, LINES };

  void startLine() {
    m_isEmpty = false;
    m_out.newLine();
  }
  void declareFields(SoFieldContainer const* container) {
    startLine();
    m_out.put("fields [");
    for (int i = 0; i < container->getNumFields(); ++i) {
      SoField const* field = container->getField(i);
      m_out.put(i == 0 ? " " : ", ");
      m_out.put(field->getTypeId().getName().str());
      m_out.put(" ");
      m_out.put(field->getName().str());
    }
    m_out.put(" ]");
  }

  SoOutput& m_out;
  SoGraphSurvey& m_survey;
  std::vector<Layout> m_lists; // those that are open
  bool m_isEmpty = false;      // the container begun last
};

} // namespace

std::unique_ptr<SoGraphForm> SoGraphForm::make(SoOutput& out, SoGraphSurvey& survey) {
  if (out.isBinary()) return std::make_unique<SoGraphBytes>(out, survey);
  return std::make_unique<GraphText>(out, survey);
}
