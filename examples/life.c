// Conway's Life on bytes, one cell to a byte: a glider gun and its gliders.
//
// The board is one line in memory. A vector takes as many cells of it as it holds, across the ends
// of rows. A frame of dead cells around the board keeps the neighbours in bounds.
#include <arm_sve.h>
#include <stdio.h>

#include "examples/check.h"

enum { width = 74, height = 40, stride = width + 2, cells = stride * (height + 2) };

static const char* const glider_gun[] = {
    "                        #           ", "                      # #           ",
    "            ##      ##            ##", "           #   #    ##            ##",
    "##        #     #   ##              ", "##        #   # ##    # #           ",
    "          #     #       #           ", "           #   #                    ",
    "            ##                      ",
};

// The sum of a cell and its two neighbours in the row.
static svuint8_t row_sum(svbool_t pg, const uint8_t* cell) {
  const svuint8_t sides = svadd_x(pg, svld1(pg, cell - 1), svld1(pg, cell + 1));
  return svadd_x(pg, sides, svld1(pg, cell));
}

static void step(uint8_t* next, const uint8_t* board, const uint8_t* inside) {
  for (int i = stride; i < cells - stride; i += (int)svcntb()) {
    const svbool_t pg = svwhilelt_b8(i, cells - stride);
    const svuint8_t above_and_below =
        svadd_x(pg, row_sum(pg, board + i - stride), row_sum(pg, board + i + stride));
    const svuint8_t sum = svadd_x(pg, above_and_below, row_sum(pg, board + i));
    const svbool_t lives = svcmpne(pg, svld1(pg, board + i), 0);
    const svbool_t stays = svcmpeq(lives, sum, 4);  // three neighbours and the cell itself
    const svbool_t born_or_stays = svorr_z(pg, svcmpeq(pg, sum, 3), stays);
    svst1(pg, next + i, svand_z(born_or_stays, svld1(pg, inside + i), 1));
  }
}

SCALAR static void step_scalar(uint8_t* next, const uint8_t* board) {
  for (int y = 1; y <= height; ++y) {
    for (int x = 1; x <= width; ++x) {
      int neighbours = 0;
      for (int dy = -1; dy <= 1; ++dy) {
        for (int dx = -1; dx <= 1; ++dx) {
          if (dx != 0 || dy != 0) neighbours += board[(y + dy) * stride + x + dx];
        }
      }
      const int i = y * stride + x;
      next[i] = neighbours == 3 || (neighbours == 2 && board[i] != 0);
    }
  }
}

SCALAR static void set_up(uint8_t* board, uint8_t* inside) {
  for (size_t row = 0; row < sizeof(glider_gun) / sizeof(glider_gun[0]); ++row) {
    for (size_t column = 0; glider_gun[row][column] != '\0'; ++column) {
      board[(row + 1) * stride + column + 2] = glider_gun[row][column] == '#';
    }
  }
  for (int i = 0; i < cells; ++i) {
    const int x = i % stride, y = i / stride;
    inside[i] = x >= 1 && x <= width && y >= 1 && y <= height;
  }
}

SCALAR static void print_rule(const char* left, const char* right) {
  printf("%s", left);
  for (int x = 0; x < width; ++x) printf("─");
  printf("%s\n", right);
}

// A line of text shows two rows of cells.
SCALAR static void print_board(const uint8_t* board) {
  static const char* const blocks[] = {" ", "▀", "▄", "█"};
  print_rule("┌", "┐");
  for (int y = 1; y < height; y += 2) {
    printf("│");
    for (int i = y * stride + 1; i <= y * stride + width; ++i) {
      printf("%s", blocks[board[i] + 2 * board[i + stride]]);
    }
    printf("│\n");
  }
  print_rule("└", "┘");
}

int main(void) {
  enum { generations = 128 };
  static uint8_t boards[2][cells], scalar[2][cells], inside[cells];
  set_up(boards[0], inside);
  set_up(scalar[0], inside);
  for (int g = 0; g < generations; ++g) {
    step(boards[(g + 1) % 2], boards[g % 2], inside);
    step_scalar(scalar[(g + 1) % 2], scalar[g % 2]);
    check_equal("life", boards[(g + 1) % 2], scalar[(g + 1) % 2], cells);
  }
  printf("Conway's Life on SVE vectors: a glider gun after %d generations\n", generations);
  print_board(boards[generations % 2]);
  return 0;
}
