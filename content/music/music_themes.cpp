#include "content/music/music_themes.h"

namespace {

constexpr Chord MAIN[4] = {
    {33, {60, 64, 67, 71}},  // Am9: C E G B over A
    {29, {57, 60, 64, 67}},  // Fmaj9: A C E G over F
    {36, {59, 62, 64, 67}},  // Cmaj9: B D E G over C
    {31, {62, 64, 67, 71}},  // G6/9: D E G B over G
};

constexpr Chord DRIVE[4] = {
    {38, {57, 60, 62, 65}},  // Dm7: A C D F over D
    {33, {57, 60, 64, 67}},  // Am7: A C E G over A
    {29, {57, 62, 64, 67}},  // F6/9: A D E G over F
    {40, {56, 59, 62, 64}},  // E7: G# B D E over E
};

constexpr Chord DARK[4] = {
    {29, {57, 60, 64, 67}},  // Fmaj9
    {31, {62, 64, 67, 71}},  // G6/9
    {40, {59, 62, 64, 67}},  // Em7: B D E G over E
    {33, {60, 64, 67, 71}},  // Am9
};

// Chord tones on the strong beats, passing notes between; the second half answers the first.
constexpr MotifNote THEME_A[] = {
    {0.0f, 0.5f, 69},  {0.75f, 0.25f, 72}, {1.0f, 1.0f, 76},  {2.5f, 0.5f, 79},  {3.0f, 1.0f, 76},
    {4.5f, 1.0f, 81},  {5.5f, 0.5f, 79},   {6.0f, 0.5f, 76},  {6.5f, 1.5f, 72},
    {8.5f, 0.5f, 74},  {9.0f, 0.5f, 76},   {9.5f, 1.0f, 79},  {10.5f, 0.5f, 76}, {11.0f, 0.5f, 74},
    {11.5f, 0.5f, 72}, {12.0f, 1.5f, 74},  {13.5f, 0.5f, 71}, {14.0f, 0.5f, 67}, {14.5f, 1.5f, 74},
    {16.0f, 0.5f, 69}, {16.75f, 0.25f, 72}, {17.0f, 1.0f, 76}, {18.5f, 0.5f, 79}, {19.0f, 1.0f, 81},
    {20.5f, 1.0f, 84}, {21.5f, 0.5f, 83},  {22.0f, 0.5f, 81}, {22.5f, 1.5f, 79},
    {24.5f, 0.5f, 76}, {25.0f, 0.5f, 79},  {25.5f, 1.0f, 83}, {26.5f, 0.5f, 81}, {27.0f, 0.5f, 79},
    {27.5f, 0.5f, 76}, {28.0f, 1.0f, 74},  {29.0f, 0.5f, 76}, {29.5f, 0.5f, 79}, {30.0f, 2.0f, 81},
};

constexpr MotifNote THEME_B[] = {
    {0.0f, 0.5f, 81},   {0.75f, 0.25f, 81}, {1.0f, 0.5f, 84},   {1.5f, 0.5f, 81},  {2.0f, 0.75f, 77},
    {2.75f, 0.75f, 76}, {3.5f, 0.5f, 74},
    {4.0f, 0.75f, 76},  {4.75f, 0.75f, 72}, {5.5f, 0.5f, 76},   {6.0f, 1.0f, 79},  {7.0f, 1.0f, 81},
    {8.0f, 0.5f, 81},   {8.5f, 0.5f, 79},   {9.0f, 0.5f, 81},   {9.5f, 1.0f, 84},  {10.5f, 0.5f, 81},
    {11.0f, 0.5f, 79},  {11.5f, 0.5f, 76},
    {12.0f, 1.0f, 83},  {13.0f, 0.5f, 80},  {13.5f, 0.5f, 76},  {14.0f, 0.5f, 74}, {14.5f, 1.5f, 76},
    {16.0f, 0.5f, 77},  {16.5f, 0.5f, 81},  {17.0f, 0.5f, 84},  {17.5f, 1.0f, 86}, {18.5f, 0.5f, 84},
    {19.0f, 1.0f, 81},
    {20.0f, 0.5f, 79},  {20.5f, 0.5f, 76},  {21.0f, 1.0f, 79},  {22.0f, 0.5f, 81}, {22.5f, 1.5f, 84},
    {24.0f, 0.75f, 86}, {24.75f, 0.75f, 84}, {25.5f, 0.5f, 81}, {26.0f, 1.0f, 79}, {27.0f, 0.5f, 77},
    {27.5f, 0.5f, 79},
    {28.0f, 1.0f, 83},  {29.0f, 1.0f, 80},  {30.0f, 1.0f, 76},  {31.0f, 0.5f, 74}, {31.5f, 0.5f, 80},
};

constexpr MotifNote COUNTER[] = {
    {0.0f, 3.0f, 76},  {3.0f, 1.0f, 72},  {4.0f, 3.0f, 74},  {7.0f, 1.0f, 71},
    {8.0f, 2.0f, 71},  {10.0f, 2.0f, 67}, {12.0f, 4.0f, 69},
    {16.0f, 3.0f, 81}, {19.0f, 1.0f, 79}, {20.0f, 3.0f, 79}, {23.0f, 1.0f, 74},
    {24.0f, 2.0f, 76}, {26.0f, 2.0f, 79}, {28.0f, 4.0f, 76},
};

}  // namespace

const Chord& chordAt(Progression progression, int bar) {
    const int index = ((bar % 4) + 4) % 4;
    switch (progression) {
        case Progression::Drive:
            return DRIVE[index];
        case Progression::Dark:
            return DARK[index];
        case Progression::Main:
            break;
    }
    return MAIN[index];
}

std::span<const MotifNote> melodyNotes(Melody melody) {
    switch (melody) {
        case Melody::ThemeA:
            return THEME_A;
        case Melody::ThemeB:
            return THEME_B;
        case Melody::Counter:
            return COUNTER;
        case Melody::None:
            break;
    }
    return {};
}
