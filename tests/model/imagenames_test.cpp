// The one rule for names of image files: what is loaded, asked for its size and saved is the same file.

#include "image/imagesourcefile.h"
#include "image/imagesourcefilemosaic.h"
#include "image/imagesourcevoxelmatrixfileplane.h"
#include "image/imagewriter.h"
#include "image/voxelmatrix.h"
#include "tests/support/errors.h"
#include "tests/support/stackfiles.h"

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace
{
/// An images folder with "a.tif" and "a.vm", of 4 columns and 3 rows each, and a stack to save beside it.
class ImageNames : public testing::Test
{
protected:
  ImageNames()
  {
    fs::create_directories(folder.file("images"));
    fs::create_directories(folder.file("stacks"));
    ImageWriter::write(Image(4, 3, 8), folder.file("images/a.tif"), false);
    VoxelMatrix<unsigned char> volume(3, 4, 2);
    volume.setZeros();
    volume.save(folder.file("images/a.vm"), false);
  }

  /// The slices and standard images can be loaded from the stack, and from its file.
  void expectImagesAreFound(const Stack& stack)
  {
    expectImagesLoad(stack);
    StackWriter().write(stack, folder.file("stacks/s.sdf"));
    Stack again;
    StackReader().read(again, folder.file("stacks/s.sdf"));
    expectImagesLoad(again);
  }

  TemporaryFolder folder;

private:
  static void expectImagesLoad(const Stack& stack)
  {
    Image image;
    for (int i = 0; i < stack.getNumSlices(); ++i)
    {
      ASSERT_NO_THROW(stack.getSlice(i)->load(image)) << "slice " << i;
      ASSERT_EQ(stack.getSlice(i)->height(), 3);
    }
    for (int i = 0; i < stack.getNumStandardImages(); ++i) ASSERT_NO_THROW(stack.getStandardImage(i)->load(image));
  }
};

std::vector<std::unique_ptr<ImageSource>> sourcesOfEachKind()
{
  std::vector<std::unique_ptr<ImageSource>> sources;
  sources.push_back(std::make_unique<ImageSourceFile>("a.tif"));
  sources.push_back(std::make_unique<ImageSourceFile>("../images/a.tif"));
  sources.push_back(std::make_unique<ImageSourceVoxelMatrixFilePlane>("a.vm", 1));
  ImageSourceFileMosaic mosaic(1, 2);
  mosaic.setFilename(0, 0, "a.tif");
  mosaic.setFilename(0, 1, "../images/a.tif");
  sources.push_back(mosaic.clone());
  return sources;
}

void addSlices(Stack& stack)
{
  for (const auto& source : sourcesOfEachKind()) stack.addSlice(std::make_unique<StackSlice>()).setImageSource(*source);
}

void addStandardImage(Stack& stack)
{
  auto image = std::make_unique<StandardImage>();
  image->setImageSource(ImageSourceFile("a.tif"));
  stack.addStandardImage(std::move(image));
  stack.addStandardImage(std::make_unique<StandardImage>()).setImageSource(ImageSourceFile("a.tif"));
}
} // namespace

TEST_F(ImageNames, AreResolvedOnceHoweverTheyMeetTheImagesPath)
{
  for (const bool isRelative : {false, true})
  {
    const std::string path = folder.file("images");
    const std::string imagesPath = isRelative ? fs::relative(path).string() : path;
    const auto setPath = [&](Stack& stack) { stack.setImagesPath(imagesPath); };
    const auto setImagesAgain = [](Stack& stack)
    {
      for (int i = 0; i < stack.getNumSlices(); ++i)
        stack.getSlice(i)->setImageSource(*stack.getSlice(i)->getImageSource());
    };
    const auto removeAndAdd = [](Stack& stack)
    {
      for (int i = 0; i < stack.getNumSlices(); ++i) stack.addSlice(stack.removeSlice(i), i);
    };
    const auto moveThroughAnotherStack = [](Stack& stack)
    {
      Stack other;
      other.setImagesPath("elsewhere");
      for (int i = 0; i < stack.getNumSlices(); ++i)
      {
        other.addSlice(stack.removeSlice(i));
        stack.addSlice(other.removeSlice(0), i);
      }
    };
    const auto setAnotherPath = [](Stack& stack) { stack.setImagesPath("/elsewhere"); };
    const std::vector<std::function<void(Stack&)>> histories[] = {
        {setPath, addSlices, addStandardImage},
        {addSlices, addStandardImage, setPath},
        {setPath, addSlices, addStandardImage, setImagesAgain, setImagesAgain},
        {setPath, addSlices, removeAndAdd, moveThroughAnotherStack},
        {addSlices, addStandardImage, setPath, setAnotherPath, removeAndAdd},
    };
    for (const auto& history : histories)
    {
      for (const bool isAbsolute : {false, true})
      {
        SCOPED_TRACE(testing::Message() << "history " << &history - histories << isRelative << isAbsolute);
        Stack stack;
        stack.setAbsoluteImagesPathPolicy(isAbsolute);
        for (const auto& event : history) event(stack);
        expectImagesAreFound(stack);
      }
    }
  }
}

TEST_F(ImageNames, CountFromTheProgramsFolderWithoutAnImagesPath)
{
  Stack stack;
  const std::string name = fs::relative(folder.file("images/a.tif")).string();
  stack.addSlice(std::make_unique<StackSlice>()).setImageSource(ImageSourceFile(name));
  expectImagesAreFound(stack);
  stack.setImagesPath("elsewhere");
  auto& source = static_cast<ImageSourceFile&>(*stack.getSlice(0)->getImageSource());
  EXPECT_EQ(source.getFilename(), (fs::current_path() / "elsewhere" / name).lexically_normal());
  source.setFilename(name); // in place: as it is
  expectImagesAreFound(stack);
}

TEST_F(ImageNames, MayLieInFoldersWhoseNamesCannotBeWritten)
{
  for (const char* name : {"a__SC__b", "a\tb"})
  {
    SCOPED_TRACE(name);
    fs::copy(folder.file("images"), folder.file(name));
    folder.write(
        std::string(name) + "/s.sdf",
        "STACK \"s\"; ImagesPath \"../images\"; SLICE \"0\" \"a.tif\"; ImagesPath \".\"; SLICE \"1\" \"a.tif\";");
    Stack stack;
    StackReader reader;
    reader.read(stack, folder.file(name) + "/s.sdf");
    EXPECT_THAT(reader.getLog(), testing::IsEmpty());
    EXPECT_EQ(stack.getImagesPath(), folder.file(name));
    StackWriter().write(stack, folder.file(name) + "/t.sdf");
    Stack again;
    StackReader().read(again, folder.file(name) + "/t.sdf");
    Image image;
    ASSERT_EQ(again.getNumSlices(), 2);
    for (int i = 0; i < 2; ++i) EXPECT_NO_THROW(again.getSlice(i)->load(image));

    const std::string other = folder.write("stacks/other.sdf", "old");
    expectError<FileWriteError>("must not hold", [&] { StackWriter().write(stack, other); }); // "../a__SC__b"
    stack.setAbsoluteImagesPathPolicy(true);
    expectError<FileWriteError>("must not hold", [&] { StackWriter().write(stack, folder.file(name) + "/t.sdf"); });
    EXPECT_EQ(contentOf(other), "old");
    expectError<ValueError>("must not hold", [&] { stack.setImagesPath(name); });
    EXPECT_EQ(stack.getImagesPath(), folder.file(name));
  }
}
