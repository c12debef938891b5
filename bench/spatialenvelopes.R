# Times the four distance functions of 1,000 objects with 999 simulated patterns on one slice, by mirelo-batch and by the
# package spatstat, one after the other:
#   Rscript --vanilla bench/spatialenvelopes.R build/release/batch/mirelo-batch [THREADS]
# Needs the Debian packages r-cran-spatstat.explore and r-cran-spatstat.random. Fails below ten times the speed.
arguments <- commandArgs(trailingOnly = TRUE)
threads <- if (length(arguments) > 1) arguments[2] else "2"
suppressMessages({ library(spatstat.explore); library(spatstat.random) })
set.seed(1)
side <- 4000; objects <- 1000; simulations <- 999
angle <- seq(0, 2 * pi, length.out = 201)[-201]
boundary <- data.frame(x = round(side / 2 + 1800 * cos(angle)), y = round(side / 2 + 1500 * sin(angle)))
window <- owin(poly = list(x = boundary$x, y = boundary$y))
X <- runifpoint(objects, win = window)
X <- unique(ppp(round(X$x), round(X$y), window = window))

folder <- tempfile("spatial"); dir.create(folder)
pairs <- function(x, y) paste0(x, ",", y, collapse = " ")
writeLines(c("FileFormatVersion 1.05;", 'STACK "envelopes";', "PIXWIDTH 1;", "RELPOSITION 1;", 'SLICE "0" "missing.tif";',
  paste0("SliceSize1 ", side, ";"), paste0("SliceSize2 ", side, ";"),
  'MODEL "domain";', "PRIMITIVE Polygon;", 'MODELITEM "domain" "0";', paste0("MODELITEMDATA ", pairs(boundary$x, boundary$y), ";"),
  'MODEL "spots";', "PRIMITIVE Polypoint;", 'MODELITEM "spots" "0";', paste0("MODELITEMDATA ", pairs(X$x, X$y), ";")),
  file.path(folder, "envelopes.sdf"))
density <- objects / area.owin(window) # as many positions for F as objects
ours <- system.time(status <- system2(arguments[1], c("spatial", file.path(folder, "envelopes.sdf"), "--boundary", "domain",
  "--objects", "spots", "--functions", "BFGH", "--samples", simulations, "--density", format(density, digits = 15)),
  env = paste0("OMP_NUM_THREADS=", threads), stdout = file.path(folder, "table.csv")))["elapsed"]
if (status != 0) stop("mirelo-batch failed")
cat(readLines(file.path(folder, "table.csv")), sep = "\n")

# The same grid of distances, the functions without correction at the border, as ours; H and B by their distances.
diagonal <- sqrt(diff(window$xrange)^2 + diff(window$yrange)^2)
r <- seq(0, diagonal, by = diagonal / 1000)
positions <- runifpoint(objects, win = window)
cdf <- function(values) data.frame(r = r, obs = ecdf(values)(r))
as_function <- function(values) fv(cdf(values), argu = "r", ylab = quote(F(r)), valu = "obs", desc = c("r", "F"))
functions <- list(
  B = function(X, ...) as_function(bdist.points(X)),
  F = function(X, ...) as_function(nncross(positions, X, what = "dist")),
  G = function(X, ...) as_function(nndist(X)),
  H = function(X, ...) { d <- pairdist(X); as_function(d[upper.tri(d)]) })
theirs <- sapply(functions, function(f) system.time(envelope(X, f, nsim = simulations, savefuns = TRUE, verbose = FALSE,
  simulate = expression(runifpoint(npoints(X), win = window))))["elapsed"])
cat("spatstat, seconds:\n"); print(theirs)
cat(sprintf("mirelo-batch, %s threads: %.2f s; spatstat: %.2f s; ratio %.1f\n", threads, ours, sum(theirs), sum(theirs) / ours))
unlink(folder, recursive = TRUE)
if (sum(theirs) < 10 * ours) stop("less than ten times as fast")
