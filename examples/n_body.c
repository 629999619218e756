// A disc of bodies around a heavy one under their mutual gravity, in single precision. Each lane
// has one body, and a loop goes over all the others. The reciprocal square root of each distance is
// FRSQRTE's estimate, good to 8 bits, and two Newton steps with FRSQRTS, each of which doubles
// that.
#include <arm_sve.h>
#include <math.h>
#include <stdio.h>

#include "examples/check.h"

enum { bodies = 150, steps = 12, most_lanes = 2048 / 32 };

// The softening is added to the square of every distance. So no force exceeds a bound, and the
// force of a body on itself is 0.
static const float time_step = 0x1p-7F, softening = 0x1p-8F;

struct system {
  float place[3][bodies], velocity[3][bodies], mass[bodies];
};

static svfloat32_t reciprocal_root(svbool_t pg, svfloat32_t a) {
  svfloat32_t root = svrsqrte(a);
  for (int i = 0; i < 2; ++i) {
    root = svmul_x(pg, root, svrsqrts(svmul_x(pg, a, root), root));
  }
  return root;
}

// Changes the velocities by the gravity of the given time.
static void pull(struct system* s, float time) {
  const float *x = s->place[0], *y = s->place[1], *z = s->place[2];
  for (int64_t i = 0; i < bodies; i += (int64_t)svcntw()) {
    const svbool_t pg = svwhilelt_b32(i, (int64_t)bodies);
    const svfloat32_t xi = svld1(pg, x + i), yi = svld1(pg, y + i), zi = svld1(pg, z + i);
    svfloat32_t vx = svld1(pg, s->velocity[0] + i);
    svfloat32_t vy = svld1(pg, s->velocity[1] + i);
    svfloat32_t vz = svld1(pg, s->velocity[2] + i);
    for (int k = 0; k < bodies; ++k) {
      const svfloat32_t dx = svsubr_x(pg, xi, x[k]);
      const svfloat32_t dy = svsubr_x(pg, yi, y[k]);
      const svfloat32_t dz = svsubr_x(pg, zi, z[k]);
      svfloat32_t square = svmla_x(pg, svdup_f32(softening), dx, dx);
      square = svmla_x(pg, svmla_x(pg, square, dy, dy), dz, dz);
      const svfloat32_t root = reciprocal_root(pg, square);
      const svfloat32_t cube = svmul_x(pg, svmul_x(pg, root, root), root);
      const svfloat32_t change = svmul_x(pg, cube, s->mass[k] * time);
      vx = svmla_x(pg, vx, dx, change);
      vy = svmla_x(pg, vy, dy, change);
      vz = svmla_x(pg, vz, dz, change);
    }
    svst1(pg, s->velocity[0] + i, vx);
    svst1(pg, s->velocity[1] + i, vy);
    svst1(pg, s->velocity[2] + i, vz);
  }
}

SCALAR static float softened_square(const struct system* s, int i, int k) {
  float square = softening;
  for (int axis = 0; axis < 3; ++axis) {
    const float d = s->place[axis][k] - s->place[axis][i];
    square += d * d;
  }
  return square;
}

SCALAR static void pull_scalar(struct system* s, float time) {
  for (int i = 0; i < bodies; ++i) {
    for (int k = 0; k < bodies; ++k) {
      const float root = 1 / sqrtf(softened_square(s, i, k));
      for (int axis = 0; axis < 3; ++axis) {
        const float d = s->place[axis][k] - s->place[axis][i];
        s->velocity[axis][i] += d * root * root * root * s->mass[k] * time;
      }
    }
  }
}

static void move(float* place, const float* velocity) {
  for (int i = 0; i < bodies; ++i) place[i] += velocity[i] * time_step;
}

// Moves the bodies between two half steps of gravity, which conserves energy to second order.
static void simulate(struct system* s, void (*pull_by)(struct system*, float)) {
  for (int step = 0; step < steps; ++step) {
    pull_by(s, time_step / 2);
    for (int axis = 0; axis < 3; ++axis) move(s->place[axis], s->velocity[axis]);
    pull_by(s, time_step / 2);
  }
}

SCALAR static double energy(const struct system* s) {
  double sum = 0;
  for (int i = 0; i < bodies; ++i) {
    for (int axis = 0; axis < 3; ++axis) {
      sum += 0.5 * s->mass[i] * s->velocity[axis][i] * s->velocity[axis][i];
    }
    for (int k = 0; k < i; ++k)
      sum -= s->mass[i] * s->mass[k] / sqrt((double)softened_square(s, i, k));
  }
  return sum;
}

// A mass of 1 in the middle, a tenth of that in the disc, and nearly circular orbits.
SCALAR static void fill(struct system* s) {
  static uint16_t random[bodies][3];
  fill_random(random, sizeof(random), 13);
  s->mass[0] = 1;
  for (int i = 1; i < bodies; ++i) {
    const float radius = 0.3F + 0.7F * (float)random[i][0] / 65536;
    const float angle = 6.2831853F * (float)random[i][1] / 65536;
    const float speed = 1 / sqrtf(radius);
    s->place[0][i] = radius * cosf(angle);
    s->place[1][i] = radius * sinf(angle);
    s->place[2][i] = 0.1F * (float)random[i][2] / 65536;
    s->velocity[0][i] = -speed * sinf(angle);
    s->velocity[1][i] = speed * cosf(angle);
    s->mass[i] = 0.1F / bodies;
  }
}

// Tests numbers from 1 to 4, since even and odd exponents have separate tables.
static double largest_error_of_root(void) {
  const svbool_t all = svptrue_b32();
  double largest = 0;
  for (int first = 1024; first < 4096; first += (int)svcntw()) {
    float a[most_lanes], roots[most_lanes];
    svst1(all, a, svmul_x(all, svcvt_f32_x(all, svindex_s32(first, 1)), 1.0F / 1024));
    svst1(all, roots, reciprocal_root(all, svld1(all, a)));
    for (int i = 0; i < (int)svcntw(); ++i) {
      largest = fmax(largest, fabs(roots[i] * sqrt((double)a[i]) - 1));
    }
  }
  return largest;
}

SCALAR static double largest_distance(const struct system* a, const struct system* b) {
  double largest = 0;
  for (int i = 0; i < bodies; ++i) {
    for (int axis = 0; axis < 3; ++axis) {
      largest = fmax(largest, fabsf(a->place[axis][i] - b->place[axis][i]));
    }
  }
  return largest;
}

int main(void) {
  const double root_error = largest_error_of_root();
  check_at_most("reciprocal root", root_error, 0x1p-22);

  static struct system s, expected;
  fill(&s);
  expected = s;
  const double before = energy(&s);
  simulate(&s, pull);
  simulate(&expected, pull_scalar);
  const double drift = energy(&s) / before - 1;
  check_at_most("places", largest_distance(&s, &expected), 0x1p-18);
  check_at_most("energy", fabs(drift), 1e-5);
  printf("1 / sqrt(a) within %.1e; %d bodies, %d steps: energy %.6f, drift %.1e, %016lx\n",
         root_error, bodies, steps, before, drift, fingerprint(&s, sizeof(s)));
  return 0;
}
