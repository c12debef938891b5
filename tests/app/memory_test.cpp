// Stacks that the memory does not suffice for are refused with a message; those that are open stay so.
#include "app/core/nyxstack.h"
#include "app/core/nyxstackserver.h"
#include "app/nyxrootwindow.h"
#include "app/nyxstackio.h"
#include "tests/support/stackfiles.h"
#include "window_test_support.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <limits>
#include <new>

namespace
{
std::atomic<std::size_t> greatestBlock = std::numeric_limits<std::size_t>::max();
} // namespace

/// Checks of addresses bring one of their own otherwise, whose blocks the operators below may not free.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
  return size > greatestBlock ? nullptr : std::malloc(size > 0 ? size : 1);
}

void* operator new(std::size_t size)
{
  void* const block = operator new(size, std::nothrow);
  if (!block) throw std::bad_alloc();
  return block;
}

void operator delete(void* block) noexcept
{
  std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
  std::free(block);
}

TEST(Memory, ThatDoesNotSufficeForAStackClosesNoOther)
{
  WindowTest test;
  NYXStackIO io(&test.window());
  const TemporaryFolder folder;
  const std::string note(5000000, 'x');
  const std::string file = folder.write("large.sdf", "STACK \"large\";\nAnnotation \"" + note + "\";\n");
  NYXStack& open = addStack("open", QString::fromStdString(folder.file("open.sdf")), false);
  open.setAnnotation(note);
  open.setModified(true);
  greatestBlock = 1000000;
  const QStringList onOpening = answering({}, [&] { EXPECT_EQ(io.openStack(QString::fromStdString(file)), nullptr); });
  const QStringList onSaving = answering({}, [&] { EXPECT_FALSE(io.saveStack(open)); });
  greatestBlock = std::numeric_limits<std::size_t>::max();
  EXPECT_EQ(onOpening, QStringList("Error|Error: " + QString::fromStdString(file) + " cannot be opened."));
  EXPECT_EQ(onSaving, QStringList("Error|Error: cannot write to " + open.getFilename()));
  EXPECT_EQ(NYXStackServer::server().getNumStacks(), 1);
  EXPECT_TRUE(open.isModified());
}
