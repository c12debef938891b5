#pragma once

#include "image/imagesource.h"
#include "image/pixelcalibration.h"

#include <QObject>
#include <QSize>
#include <QString>

#include <memory>
#include <vector>

class Image;
class NYXImageServer;

/// What a canvas holds of the image that it shows: its source, and the images of it that a server has loaded so far.
///
/// Level 0 is the whole image, each following level a reduced copy. The images belong to the server's data and stay
/// until imageChanged() tells otherwise; proxies live in the thread of the windows.
class NYXImageProxy : public QObject
{
  Q_OBJECT

public:
  explicit NYXImageProxy(QObject* parent = nullptr) : QObject(parent) {}
  /// Detaches itself from its server.
  ~NYXImageProxy() override;

  /// Shows another image: detaches the proxy, forgets what was loaded and reads the header to know the image's size.
  /// Copies the source; nullptr for no image. An image whose header cannot be read has its reason as its problem().
  void setImageSource(const ImageSource* source);
  /// The copy, or nullptr.
  const ImageSource* getImageSource() const { return _source.get(); }
  /// Identity of the source: proxies with the same key share one loaded image. Empty without a source.
  const QString& key() const { return _key; }

  /// Width and height of the source; not valid when they are not known.
  const QSize& getOriginalImageSize() const { return _originalImageSize; }
  void clearOriginalImageSize() { _originalImageSize = QSize(); }
  const PixelCalibration& getPixelCalibration() const { return _pixelCalibration; }
  void setPixelCalibration(const PixelCalibration& calibration) { _pixelCalibration = calibration; }

  bool hasImageServer() const { return _server != nullptr; }
  /// The server to which the proxy is attached. \throw ProgramError  none
  NYXImageServer& getImageServer() const;

  /// How many levels there are by now.
  int getNumImages() const { return static_cast<int>(_images.size()); }
  bool hasImage() const { return !_images.empty(); }
  /// The whole image. \throw ProgramError  nothing is loaded, as for the next two
  const Image& getImage() const;
  /// Level `level`. Unchecked, as long as there is one.
  const Image& getImage(int level) const;
  /// The level to draw, of a zoom in canvas pixels per image pixel: the one before the first smaller level that is at
  /// most as wide as the whole image on screen, the last when none is.
  const Image& getImageForZoom(float zoom) const;
  /// The number of that level.
  int levelForZoom(float zoom) const;

  /// Why the image cannot be shown, with the file's name; empty when nothing failed.
  const QString& problem() const { return _problem; }

  /// Called by the server and its data.
  /// @{
  void setImageServer(NYXImageServer* server) { _server = server; }
  void appendImage(const Image& image);
  void clearImage();
  void setProblem(const QString& problem);
  /// @}

signals:
  /// The levels or the problem changed.
  void imageChanged();

private:
  void requireImage(const char* where) const;

  std::unique_ptr<ImageSource> _source;
  QString _key;
  QSize _originalImageSize;
  PixelCalibration _pixelCalibration;
  NYXImageServer* _server = nullptr;
  std::vector<const Image*> _images;
  QString _problem;
};
