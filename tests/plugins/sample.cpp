// A plug-in for the tests: its extensions register one of everything and differ in what they do then.

#include <QDockWidget>
#include <QLabel>
#include <QMenu>
#include <QPointer>
#include <QToolBar>
#include <memory>
#include <stdexcept>
#include <vector>

#include "kestrava/nodes/SoGroup.h"
#include "vnt/VntExtension.h"
#include "vnt/VntPlugin.h"
#include "vnt/VntShell.h"

class SampleExtension : public VntExtension {
 public:
  explicit SampleExtension(SbString const& name) : m_name(name) {}
  ~SampleExtension() override = default;
  SbString getName() const override { return m_name; }
  SbString getInfo() const override { return m_name + " info"; }
  bool addControlled(VntExtension* controlled) override {
    m_hasPart = m_name == "Good" && controlled->getName() == "Part";
    return m_hasPart;
  }

  void activate() override {
    QString const name = QString::fromStdString(m_name.str());
    VntShell* const shell = VntShell::getInstance();
    m_dock = new QDockWidget(name + " dock");
    m_bar = new QToolBar(name + " bar");
    m_label = new QLabel(name + " label");
    m_label->setObjectName(name + " label");
    m_page = std::make_unique<QWidget>();
    m_menu = std::make_unique<QMenu>(name + " menu");
    m_contextMenu = std::make_unique<QMenu>(name + " context");
    shell->registerDock(m_dock, Qt::LeftDockWidgetArea);
    if (m_name == "Thrower") throw std::runtime_error("no luck today");
    shell->registerToolBar(m_bar, Qt::TopToolBarArea);
    shell->regiterStatusBarWidget(m_label, true, 0);
    shell->registerPreferencePanel(this, m_page.get(), nullptr, nullptr);
    shell->registerMenu(m_menu.get());
    shell->registerContextualMenu(SoGroup::getClassTypeId(), false, m_contextMenu.get());
    shell->registerViewMenu(this, 1);
    if (m_hasPart) m_dock->setWindowTitle(name + " dock with part");
  }

  void deactivate() override {
    VntShell* const shell = VntShell::getInstance();
    if (m_name == "Forgetful") return;
    if (m_name != "Deleter") {
      shell->unregisterDock(m_dock);
      shell->unregisterToolBar(m_bar);
      shell->unregiterStatusBarWidget(m_label);
      shell->unregisterPreferencePanel(this);
      shell->unregisterMenu(m_menu.get());
      shell->unregisterContextualMenu(m_contextMenu.get());
      shell->unregisterViewMenu(this);
    }
    delete m_dock;
    delete m_bar;
    delete m_label;
    m_page.reset();
    m_menu.reset();
    m_contextMenu.reset();
  }

  void show() override { m_dock->show(); }
  void hide() override {
    if (m_name == "Sulky") throw 42;
    m_dock->hide();
  }

 private:
  SbString m_name;
  bool m_hasPart = false;
  QPointer<QDockWidget> m_dock;
  QPointer<QToolBar> m_bar;
  QPointer<QLabel> m_label;
  std::unique_ptr<QWidget> m_page;
  std::unique_ptr<QMenu> m_menu, m_contextMenu;
};

class SamplePlugin : public QObject, public VntPlugin {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID VNT_PLUGIN_IID FILE "sample.json")
  Q_INTERFACES(VntPlugin)
 public:
  SamplePlugin() {
    for (char const* name : {"Good", "Forgetful", "Deleter", "Thrower", "Sulky", "Part"}) {
      m_extensions.push_back(std::make_unique<SampleExtension>(name));
    }
  }
  VntExtension* getExtension(SbString const& name) override {
    for (auto const& extension : m_extensions) {
      if (extension->getName() == name) return extension.get();
    }
    return nullptr;
  }

 private:
  std::vector<std::unique_ptr<VntExtension>> m_extensions;
};

#include "sample.moc"
