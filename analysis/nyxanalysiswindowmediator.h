#pragma once

#include "app/core/nyxeventclient.h"

#include <QObject>

class ModelItem;
class NYXAnalysisTable;
class NYXAnalysisWindow;
class NYXMeasures;
class NYXStack;

/// Keeps the sheets of the analysis window in step with the measures, and copies and saves them.
class NYXAnalysisWindowMediator : public QObject, public NYXEventClient
{
  Q_OBJECT

public:
  explicit NYXAnalysisWindowMediator(NYXAnalysisWindow& window);
  ~NYXAnalysisWindowMediator() override;

  /// Connects the parts of the window.
  void initialize();
  /// Refills all sheets.
  void setStack(NYXStack* stack);
  NYXMeasures& measures() const { return *_measures; }

  /// Writes the current sheet to a file as comma-separated text. \return false with a message when that fails
  bool saveTo(const QString& filename);

public slots:
  /// Puts the selected cells of the current sheet on the clipboard, all when none is selected.
  void copySelection();
  /// Asks for a file and writes the current sheet to it.
  void saveCurrentSheet();

signals:
  /// An item, or a slice, is to be shown in the editor.
  /// @{
  void itemOpened(ModelItem& item);
  void sliceOpened(int slice);
  /// @}

protected:
  void stackNameEvent(const NYXStackNameEvent& event) override;
  void stackFileNameEvent(const NYXStackFileNameEvent& event) override;

private:
  enum Sheet
  {
    Models,
    Slices,
    Items
  };

  Sheet sheet() const;
  bool isSheetStale() const;
  QString failure() const;
  std::string sheetText() const;
  QString proposedName() const;
  void showModels();
  void showItems();
  void showName();
  void showState();
  void openItem(int source);

  NYXAnalysisWindow& _window;
  NYXMeasures* _measures;
};
