// Storage of parts and records: borrowed from the arena as read, owned once resized.
#include <gtest/gtest.h>

#include "model/shp_arena.h"
#include "model/shp_types.h"

using namespace velmora;

TEST(ShpPartStorage, BorrowedBlocksBecomeOwnedOnResizeAndCopiesAreDeep) {
  ShpArena arena;
  ShpPart p;
  p.BorrowFrom(arena, 3, true, true);
  for (int i = 0; i < 3; ++i) {
    p.PartPoints()[size_t(i)] = XY{double(i), double(10 + i)};
    p.PartZ()[size_t(i)] = 100 + i;
    p.PartM()[size_t(i)] = 200 + i;
  }
  size_t used = arena.Bytes();
  EXPECT_EQ(used, 3u * 4 * 8);
  ShpPart copy(p);
  copy.PartPoints()[0].X = -1;
  EXPECT_EQ(p.PartPoints()[0].X, 0);
  p.Insert(1, XY{7, 7}, 77, 88);
  ASSERT_EQ(p.Size(), 4u);
  EXPECT_EQ(p.PartZ()[2], 101);
  EXPECT_EQ(p.PartM()[1], 88);
  EXPECT_EQ(p.PartM()[3], 202);
  p.Erase(0, 2);
  EXPECT_EQ(p.PartPoints()[0].Y, 11);
  EXPECT_EQ(p.PartZ()[1], 102);
  p.SetZM(false, true);
  EXPECT_TRUE(p.PartZ().empty());
  EXPECT_EQ(p.PartM()[1], 202);
  p.SetZM(true, true);
  EXPECT_EQ(p.PartZ()[1], 0);
  // Growing one by one keeps earlier values.
  for (int i = 0; i < 100; ++i) p.Insert(p.Size(), XY{1, 1}, 5, 6);
  EXPECT_EQ(p.PartM()[1], 202);
  EXPECT_EQ(p.PartZ()[101], 5);
  EXPECT_EQ(arena.Bytes(), used); // edits never take arena memory
}

TEST(ShpPartStorage, RecordsKeepASlotArrayApartFromTheirPartCount) {
  ShpArena arena;
  ShpRecord r;
  r.BorrowParts(arena, 2);
  r.Part(0).BorrowFrom(arena, 2, false, false);
  r.Part(1).Resize(3); // an owned block inside a borrowed array
  EXPECT_EQ(r.Parts().size(), 2u);
  r.NumParts = 5; // a count beyond the array shows only what is there
  EXPECT_EQ(r.Parts().size(), 2u);
  r.NumParts = 2;
  ShpPart& added = r.InsertPart(1);
  added.Resize(1);
  EXPECT_EQ(r.NumParts, 3);
  EXPECT_EQ(r.Part(2).Size(), 3u);
  ShpRecord c = r;
  r.ErasePart(0);
  EXPECT_EQ(r.NumParts, 2);
  EXPECT_EQ(c.NumParts, 3);
  EXPECT_EQ(c.Part(0).Size(), 2u);
  r.ResizeParts(1);
  r.NumParts = 0;
  EXPECT_EQ(r.PartSlots(), 1);
  EXPECT_TRUE(r.Parts().empty());
  ShpRecord moved = std::move(c);
  EXPECT_EQ(moved.PartSlots(), 3);
  EXPECT_EQ(c.PartSlots(), 0);
}

TEST(ShpPartStorage, GeometryBlockReleasesRecordsBeforeTheArena) {
  ShpBlock b;
  b.Arena = std::make_shared<ShpArena>();
  b.ShpRecs.resize(3);
  for (auto& r : b.ShpRecs) {
    r.BorrowParts(*b.Arena, 1);
    r.Part(0).Resize(4);
  }
  ShpBlock moved = std::move(b);
  moved = ShpBlock(); // old records go while their arena lives
  EXPECT_TRUE(moved.ShpRecs.empty());
}
