"""The keys of a two-player game that fills the 19 x 19 board without a line of four.

Cell (column c, row r), both from 0 and rows from the bottom, gets player (r + c // 2) % 2
+ 1: along a row the players go in pairs (1 1 2 2 ...), down a column they alternate, and
along either diagonal they change every second step, so no line holds three of a kind. Player
1 has 181 cells, player 2 has 180, as the turns of a game that player 1 opens. The moves are
found by a search that, at each turn, drops into a column whose next free cell belongs to the
player to move.
"""

CELLS = 19


def owner(column: int, row: int) -> int:
    return (row + column // 2) % 2 + 1


def longest_run() -> int:
    """The longest line of one player on the full board, checked, not assumed."""
    best = 0
    for c in range(CELLS):
        for r in range(CELLS):
            for dc, dr in ((1, 0), (0, 1), (1, 1), (1, -1)):
                n = 0
                while (0 <= c + n * dc < CELLS and 0 <= r + n * dr < CELLS
                       and owner(c + n * dc, r + n * dr) == owner(c, r)):
                    n += 1
                best = max(best, n)
    return best


def columns_in_order() -> list[int]:
    """Column numbers (from 0) in playing order."""
    heights = [0] * CELLS
    moves: list[int] = []

    def search(turn: int) -> bool:
        if turn == CELLS * CELLS:
            return True
        player = turn % 2 + 1
        # The fullest columns first keeps the others open for later turns.
        for c in sorted(range(CELLS), key=lambda k: -heights[k]):
            if heights[c] < CELLS and owner(c, heights[c]) == player:
                heights[c] += 1
                moves.append(c)
                if search(turn + 1):
                    return True
                moves.pop()
                heights[c] -= 1
        return False

    if not search(0):
        raise RuntimeError("no order of moves fills the board")
    return moves


def keys() -> str:
    """The characters that play the moves: "1" for the first column, then the characters
    that follow "9" for the columns beyond the ninth."""
    if longest_run() >= 4:
        raise RuntimeError("the filling pattern holds a line of four")
    return "".join(chr(ord("1") + c) for c in columns_in_order())


if __name__ == "__main__":
    print(keys())
