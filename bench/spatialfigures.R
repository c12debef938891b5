# Compares the distance functions that spatial_figures wrote with those of the package spatstat:
#   spatial_figures FOLDER && Rscript --vanilla bench/spatialfigures.R FOLDER
# Needs the Debian package r-cran-spatstat.explore. Fails when a function differs by more than rounding.
folder <- commandArgs(trailingOnly = TRUE)[1]
suppressMessages(library(spatstat.explore))
table <- function(name) read.delim(file.path(folder, name))
boundary <- table("boundary.txt"); pattern <- table("pattern.txt"); positions <- table("positions.txt")
ours <- table("functions.txt")
window <- owin(poly = list(x = boundary$x, y = boundary$y))
X <- ppp(pattern$x, pattern$y, window = window)
Q <- ppp(positions$x, positions$y, window = window)
theirs <- list(
  B = ecdf(nncross(X, edges(window), what = "dist"))(ours$grid),
  F = ecdf(nncross(Q, X, what = "dist"))(ours$grid),
  G = Gest(X, r = ours$grid, correction = "none")$raw,
  H = ecdf(pairdist(X)[upper.tri(diag(npoints(X)))])(ours$grid))
differences <- sapply(names(theirs), function(name) max(abs(ours[[name]] - theirs[[name]])))
print(differences)
if (any(differences > 1e-6)) stop("a distance function differs")
