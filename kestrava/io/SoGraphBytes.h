#pragma once

#include "kestrava/io/SoGraphForm.h"

/// The binary form of graphs.
class SoGraphBytes : public SoGraphForm {
 public:
  SoGraphBytes(SoOutput& out, SoGraphSurvey& survey) : m_out(out), m_survey(survey) {}

  void beginFile() override;
  void endFile() override { end(); }
  void putNull() override { putWord(SoGraphWords::NONE, 0); }
  void putUse(SoFieldContainer const*, SoGraphSurvey::Entry& entry) override {
    putWord(SoGraphWords::USE, numberOf(entry));
  }
  void begin(SoFieldContainer const* container, SoGraphSurvey::Entry* entry) override;
  void end() override { putWord(SoGraphWords::END, 0); }
  void beginField(SoField const* field, bool hasValue) override;
  void putValue(SoField const* field) override;
  void beginList(int count, bool isMany) override;
  void beginPath() override { putWord(SoGraphWords::PATH, 0); }
  void endPath(std::vector<std::int32_t> const& steps) override;
  void putIgnored(SoField const* field) override;
  void beginSource(SoField const* follower) override;
  void endSource(SoField const* source) override;

 private:
  void putWord(SoGraphWords::Kind kind, std::uint32_t number);
  int numberOf(SoGraphSurvey::Entry& entry);
  int classNumber(SoFieldContainer const* container, bool& isNew);

  SoOutput& m_out;
  SoGraphSurvey& m_survey;
  int m_entries = 0;
  std::unordered_map<std::string, int> m_classes; // by type and fields
};
